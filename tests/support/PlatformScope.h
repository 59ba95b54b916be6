#ifndef TESTS_SUPPORT_PLATFORMSCOPE_H
#define TESTS_SUPPORT_PLATFORMSCOPE_H

namespace testsupport
{

/** A call of a platform for tests: what it allocates, opens and so on is not the layer's. */
class PlatformScope
{
public:
    PlatformScope() noexcept { ++depth; }
    ~PlatformScope() { --depth; }
    PlatformScope(const PlatformScope&) = delete;
    PlatformScope& operator=(const PlatformScope&) = delete;

    /** Whether this thread is in such a call. */
    static bool isInside() noexcept { return depth > 0; }

private:
    static inline thread_local int depth = 0;
};

} // namespace testsupport

#endif
