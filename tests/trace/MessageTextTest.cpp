#include "MessageText.h"
#include "ErrnoText.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <locale>

namespace
{

using trace::MessageText;

template <typename... Values> std::string textOf(const Values&... values)
{
    MessageText text;
    (text << ... << values);
    return std::string(text.view());
}

TEST(MessageText, TakesTexts)
{
    EXPECT_EQ(textOf("a", std::string("b\0c", 3), 'd', std::string_view("ef").substr(1)),
              std::string("ab\0cdf", 6));
    const char* none = nullptr;
    EXPECT_EQ(textOf("a", none, "b", ""), "ab");
    EXPECT_EQ(textOf(syscalls::errnoText(ENOENT), syscalls::errnoText(12345)),
              "No such file or directoryUnknown error 12345");
}

TEST(MessageText, TakesNumbers)
{
    EXPECT_EQ(textOf(0, ' ', -1, ' ', INT_MIN, ' ', UINT_MAX), "0 -1 -2147483648 4294967295");
    EXPECT_EQ(textOf(INT64_MIN, ' ', INT64_MAX, ' ', UINT64_MAX),
              "-9223372036854775808 9223372036854775807 18446744073709551615");
    EXPECT_EQ(textOf(short{-7}, std::size_t{8}), "-78");
}

TEST(MessageText, GrowsWithWhatItTakes)
{
    for (const std::size_t length : {511U, 512U, 513U, 1023U, 1024U, 1025U, 100000U}) {
        const std::string first(length, 'a');
        EXPECT_EQ(textOf(first), first);
        EXPECT_EQ(textOf(first, "bc", first, 10), first + "bc" + first + "10");
    }
    MessageText text;
    std::string expected;
    for (int i = 0; i < 5000; ++i) {
        text << 'x';
        expected += 'x';
    }
    EXPECT_EQ(text.view(), expected);
    EXPECT_FALSE(text.isLost());
}

class Thousands : public std::numpunct<char>
{
    char do_thousands_sep() const override { return ','; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(MessageText, WritesNumbersTheSameInAllLocales)
{
    const std::locale before =
        std::locale::global(std::locale(std::locale(), new Thousands)); // NOLINT(*-owning-memory)
    EXPECT_EQ(textOf(1009, ' ', 1234567U, ' ', -1000000000L), "1009 1234567 -1000000000");
    std::locale::global(before);
}

} // namespace
