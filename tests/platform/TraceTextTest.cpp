#include "Program.h"
#include "TraceTest.h"

#include <cstdlib>

namespace
{

using namespace testing;
using testsupport::Header;

// A static object, made before those of the library, writes where such a variable says.
const char* const Early = "BSP_TEST_EARLY_TEXT";
[[maybe_unused]] const bool isWritten = [] {
    if (const char* const text = ::getenv(Early)) {
        GT_TraceRecord record{TraceRecordStartLevel, "channel"};
        GT_printf2(&record, 1, &Header, "%s", text);
    }
    return true;
}();

struct TextCase
{
    const char* text;
    const char* written;
};

class TraceText : public testsupport::TraceTest
{
protected:
    void expectWritten(const std::vector<TextCase>& cases) const
    {
        GT_TraceRecord record{TraceRecordStartLevel, "channel"};
        std::vector<std::string> expected;
        for (const TextCase& each : cases) {
            GT_printf2(&record, 1, &Header, "%s", each.text);
            expected.emplace_back(each.written);
        }
        EXPECT_EQ(texts(), expected);
    }
};

// A letter behind each piece shows where it ends.

TEST_F(TraceText, KeepsLetters)
{
    expectWritten({
        {" ~[]", " ~[]"},
        {"M\xC3\xBCller \xC2\xA0\xDF\xBFx", "M\xC3\xBCller \xC2\xA0\xDF\xBFx"},
        {"\xE0\xA0\x80x\xED\x9F\xBFx\xEE\x80\x80x\xEF\xBF\xBFx",
         "\xE0\xA0\x80x\xED\x9F\xBFx\xEE\x80\x80x\xEF\xBF\xBFx"},
        {"\xF0\x90\x80\x80x\xF3\xBF\xBF\xBFx\xF4\x8F\xBF\xBFx",
         "\xF0\x90\x80\x80x\xF3\xBF\xBF\xBFx\xF4\x8F\xBF\xBFx"},
    });
}

TEST_F(TraceText, ShowsControlsByTheirBytes)
{
    expectWritten({
        {"a\nb\tc\rd\x1B[0m\x7Fx", "a\\x0Ab\\x09c\\x0Dd\\x1B[0m\\x7Fx"},
        {"text\n", "text"},
        {"text\n\n", "text\\x0A"},
        {"\xC2\x80x\xC2\x85x\xC2\x9B[0m\xC2\x9Fx",
         "\\xC2\\x80x\\xC2\\x85x\\xC2\\x9B[0m\\xC2\\x9Fx"},
    });
}

TEST_F(TraceText, ShowsABackslashByItsByte)
{
    expectWritten({{"\\", "\\x5C"}, {"a\\nb \\x0A", "a\\x5Cnb \\x5Cx0A"}});
}

TEST_F(TraceText, ShowsWhatIsNoLetterByItsBytes)
{
    expectWritten({
        // Bytes that begin nothing.
        {"\x80x\x9B[0m\xBFx", "\\x80x\\x9B[0m\\xBFx"},
        {"\xF5\x80\x80\x80x\xFEx\xFFx", "\\xF5\\x80\\x80\\x80x\\xFEx\\xFFx"},
        // Longer than need be.
        {"\xC0\xAFx\xC1\xBFx", "\\xC0\\xAFx\\xC1\\xBFx"},
        {"\xE0\x80\x80x\xE0\x9F\xBFx", "\\xE0\\x80\\x80x\\xE0\\x9F\\xBFx"},
        {"\xF0\x80\x80\xAFx\xF0\x8F\xBF\xBFx", "\\xF0\\x80\\x80\\xAFx\\xF0\\x8F\\xBF\\xBFx"},
        // Halves of UTF-16's pairs, and what lies behind the last letter.
        {"\xED\xA0\x80x\xED\xBF\xBFx", "\\xED\\xA0\\x80x\\xED\\xBF\\xBFx"},
        {"\xF4\x90\x80\x80x", "\\xF4\\x90\\x80\\x80x"},
        // Cut off by the end or by another letter.
        {"\xC3", "\\xC3"},
        {"\xE2\x82", "\\xE2\\x82"},
        {"\xF0\x9F\x98", "\\xF0\\x9F\\x98"},
        {"\xC3x\xE2\x82x\xF0\x9F\x98x", "\\xC3x\\xE2\\x82x\\xF0\\x9F\\x98x"},
        {"\xE2\xC3\xBC\xF0\x9F\xC3\xBC", "\\xE2\xC3\xBC\\xF0\\x9F\xC3\xBC"},
        {"\xC3\n", "\\xC3"},
    });
}

TEST_F(TraceText, MayHoldNul)
{
    write(std::string("a\0b", 3));
    EXPECT_THAT(texts(), ElementsAre("a\\x00b"));
}

TEST_F(TraceText, IsNotTheOnlyPartThatIsOnOneLine)
{
    HvxTrace channel("chan\nnel\\", 3);
    write(channel, 1, "text");
    EXPECT_THAT(lines(), SizeIs(1));
    EXPECT_THAT(lines()[0], HasSubstr(" chan\\x0Anel\\x5C["));
}

TEST_F(TraceText, IsCutWhereAPipeWouldNotTakeItInOnePiece)
{
    write(std::string(5000, 'x'));
    GT_TraceRecord record{TraceRecordStartLevel, "channel"};
    GT_printf2(&record, 1, &Header, "%s\n", std::string(1000000, 'y').c_str());
    EXPECT_THAT(lines(), ElementsAre(AllOf(SizeIs(4095), EndsWith("xxx...")),
                                     AllOf(SizeIs(4095), EndsWith("yyy..."))));
}

TEST_F(TraceText, IsCutOnlyWhereItMust)
{
    write("");
    const std::size_t room = 4095 - lines()[0].size();
    write(std::string(room, 'x'));
    write(std::string(room + 1, 'x'));
    EXPECT_EQ(texts()[1], std::string(room, 'x'));
    EXPECT_EQ(texts()[2], std::string(room - 3, 'x') + "...");
}

TEST_F(TraceText, IsCutBetweenTwoLetters)
{
    for (std::size_t i = 0; i < 4; ++i) {
        std::string letters(i, '.');
        std::string bytes(i, '.');
        for (int j = 0; j < 2500; ++j) {
            letters += "\xC3\xBC";
            bytes += "\n";
        }
        write(letters);
        write(bytes);
        EXPECT_THAT(lines(), SizeIs(2 * i + 2));
        EXPECT_THAT(lines()[2 * i], EndsWith("\xC3\xBC..."));
        EXPECT_THAT(lines()[2 * i + 1], EndsWith("\\x0A..."));
    }
}

TEST_F(TraceText, IsCutWithAMarkBeforeMainToo)
{
    testsupport::Program program = testsupport::programAt(
        std::filesystem::read_symlink("/proc/self/exe"), {"--gtest_filter=-*"});
    program.environment = {{Early, std::string(5000, 'x')}};
    EXPECT_EQ(program.run().status, 0);
    EXPECT_THAT(texts(), ElementsAre(EndsWith("xxx...")));
}

} // namespace
