/**
 * @file
 * @brief What a build with a sanitizer cannot do.
 */
#ifndef TESTS_SUPPORT_SANITIZERS_H
#define TESTS_SUPPORT_SANITIZERS_H

#include <string_view>

namespace testsupport
{

/** Whether the build has this sanitizer: "address", "undefined" or "thread". */
constexpr bool isSanitized(std::string_view sanitizer)
{
    return std::string_view(BSP_TEST_SANITIZERS).find(sanitizer) != std::string_view::npos;
}

/** In a process forked beside threads the memory of these can stay locked. */
constexpr bool canForkBesideThreads()
{
    return !isSanitized("address") && !isSanitized("thread");
}

constexpr const char* NoForkBesideThreads =
    "the sanitizer's own memory can be locked in a process forked beside threads";

} // namespace testsupport

#endif
