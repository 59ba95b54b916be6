/**
 * @file
 * @brief What a test case needs that not every machine grants.
 */
#ifndef TESTS_SUPPORT_NAMESPACES_H
#define TESTS_SUPPORT_NAMESPACES_H

namespace testsupport
{

/** Begins the reason of a case that is skipped because it cannot have namespaces of its own. */
constexpr const char* NoNamespaces = "no namespaces: ";

/** Whether bubblewrap may make namespaces and mounts; containers and chroots mostly forbid it. */
bool haveNamespaces();

} // namespace testsupport

#endif
