#ifndef TESTS_SUPPORT_GROUPEDDIGITS_H
#define TESTS_SUPPORT_GROUPEDDIGITS_H

#include <locale>

namespace testsupport
{

/** While it lives, the global locale groups digits, as a program may want its own numbers. */
class GroupedDigits
{
public:
    GroupedDigits() = default;
    ~GroupedDigits() { std::locale::global(m_before); }
    GroupedDigits(const GroupedDigits&) = delete;
    GroupedDigits& operator=(const GroupedDigits&) = delete;

private:
    class Thousands : public std::numpunct<char>
    {
        char do_thousands_sep() const override { return ','; }
        std::string do_grouping() const override { return "\3"; }
    };

    const std::locale m_before =
        std::locale::global(std::locale(std::locale(), new Thousands)); // NOLINT(*-owning-memory)
};

} // namespace testsupport

#endif
