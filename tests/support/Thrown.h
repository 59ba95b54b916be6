#ifndef TESTS_SUPPORT_THROWN_H
#define TESTS_SUPPORT_THROWN_H

#include <exception>
#include <string>

namespace testsupport
{

/** What the exception of that type says that the work throws; "nothing" when it throws none. */
template <typename Exception = std::exception, typename Work> std::string thrownBy(const Work& work)
{
    try {
        work();
        return "nothing";
    } catch (const Exception& error) {
        return error.what();
    }
}

} // namespace testsupport

#endif
