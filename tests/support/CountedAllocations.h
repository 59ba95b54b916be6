#ifndef TESTS_SUPPORT_COUNTEDALLOCATIONS_H
#define TESTS_SUPPORT_COUNTEDALLOCATIONS_H

namespace testsupport
{

/** How often this process has called operator new. Linking this replaces the operator. */
long countedAllocations();

} // namespace testsupport

#endif
