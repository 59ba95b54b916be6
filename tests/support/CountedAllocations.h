#ifndef TESTS_SUPPORT_COUNTEDALLOCATIONS_H
#define TESTS_SUPPORT_COUNTEDALLOCATIONS_H

namespace testsupport
{

/** How often this process has called operator new. Linking this replaces the operator. */
long countedAllocations();

/** Makes the next so many calls fail; 0 ends what an earlier call of this began. */
void failAllocations(long count);

} // namespace testsupport

#endif
