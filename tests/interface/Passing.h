/**
 * @file
 * @brief How a wrapped function passes its calls on.
 */
#ifndef TESTS_INTERFACE_PASSING_H
#define TESTS_INTERFACE_PASSING_H

#include "InterposedCalls.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <optional>
#include <type_traits>

namespace interposed
{

/** What a library allocates meanwhile is for that function; the layer goes on in pthread_once. */
class Performing
{
public:
    explicit Performing(const char* name);
    ~Performing();
    Performing(const Performing&) = delete;
    Performing& operator=(const Performing&) = delete;

private:
    const char* const m_outer;
};

/** Notes what a function has allocated, and gives it back. */
void* allocated(void* memory);
/** What the layer has allocated may also be freed by the platform. */
void freed(const void* memory);

/** Notes that so many more mappings are there. */
void addMappings(int count);

/** Makes a call, or does to it what it was chosen for. */
template <typename Make, typename Result = std::invoke_result_t<Make>>
Result pass(const char* name, std::common_type_t<Result> failed, Make make)
{
    const std::optional<Fault> fault = enter(name);
    const Performing performing(name);
    if (!fault) {
        return make();
    }
    if (fault->kind == Fault::FailsDone) {
        make();
    }
    if constexpr (std::is_arithmetic_v<Result>) {
        if (fault->kind == Fault::Gives) {
            return static_cast<Result>(fault->value);
        }
    }
    errno = fault->value;
    return failed;
}

/** The same for functions that get a count of bytes. */
template <typename Result, typename Make>
Result passCounted(const char* name, Result failed, std::size_t size, Make make)
{
    const std::optional<Fault> fault = enter(name);
    const Performing performing(name);
    if (!fault) {
        return make(size);
    }
    switch (fault->kind) {
    case Fault::IsShort:
        return make(std::min<std::size_t>(size, 1));
    case Fault::Gives:
        return static_cast<Result>(fault->value);
    default:
        errno = fault->value;
        return failed;
    }
}

/** The same for functions that take memory. */
template <typename Make> void* allocate(Make make)
{
    return allocated(pass("allocation", nullptr, make));
}

} // namespace interposed

#endif
