/**
 * @file
 * @brief The format of the settings file, as people write it and as it is written.
 */
#include "SettingsText.h"
#include "Thrown.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace
{

using settings::Entries;
using settings::SettingsText;
using namespace testing;

Entries entriesOf(const std::string& text)
{
    return SettingsText(text).entries();
}

/** What a text is refused with. */
std::string errorOf(const std::string& text)
{
    return testsupport::thrownBy<std::runtime_error>([&text] { return SettingsText(text).text(); });
}

/** The text with one setting alone. */
std::string textOf(const std::string& key, const std::string& value)
{
    SettingsText text;
    text.set(key, value);
    return text.text();
}

TEST(SettingsText, HasTheseEntries)
{
    struct
    {
        const char* of;
        std::string text;
        Entries entries;
    } const rows[] = {
        {"no lines", "", {}},
        {"a key and a value in a line",
         "RadiolinkMode=Rl5\nFpgaVariant=TwoTdm\n",
         {{"FpgaVariant", "TwoTdm"}, {"RadiolinkMode", "Rl5"}}},
        {"no value", "a=b=c\nempty=\nlast=1", {{"a", "b=c"}, {"empty", ""}, {"last", "1"}}},
        {"blanks around", " a = b c \t\n\tb=1\r\n c =\r\n", {{"a", "b c"}, {"b", "1"}, {"c", ""}}},
        {"escapes", "a\\x3Db=\\x20\\\\\\n\\x00\\xfF \n", {{"a=b", std::string(" \\\n\0\xFF", 5)}}},
        {"an escaped mark", "\\x23a=#b\n", {{"#a", "#b"}}},
        {"other bytes", "\xC3\xA4=\xFF\ta\n", {{"\xC3\xA4", "\xFF\ta"}}},
        {"blanks and comments", "\n \t\r\n# a=b\n  #c\x01\nd=1 # none\n", {{"d", "1 # none"}}},
        {"several lines of a key", "a=1\nb=2\na=3\n", {{"a", "3"}, {"b", "2"}}},
    };
    for (const auto& [of, text, entries] : rows) {
        EXPECT_EQ(entriesOf(text), entries) << of;
    }
    EXPECT_EQ(SettingsText("").text(), "");
}

TEST(SettingsText, NamesTheLineThatIsWrongAndWhy)
{
    const std::string longKey(512, 'k');
    EXPECT_EQ(errorOf("word"), "line 1: not of the form key=value");
    EXPECT_EQ(errorOf("a=1\n\n# b\nc d\n"), "line 4: not of the form key=value");
    EXPECT_EQ(errorOf("a=1\n =1"), "line 2: an empty key");
    EXPECT_EQ(errorOf(longKey + "=1"), "line 1: a key of more than 511 bytes");
    EXPECT_EQ(errorOf("a=\\q"), "line 1: a backslash that is followed by none of \\, n and x");
    EXPECT_EQ(errorOf("a=1\\"), "line 1: a backslash that is followed by none of \\, n and x");
    EXPECT_EQ(errorOf("a\\=1"), "line 1: a backslash that is followed by none of \\, n and x");
    EXPECT_EQ(errorOf("a=\\xg0"), "line 1: \\x without two hexadecimal digits");
    EXPECT_EQ(errorOf("a=\\x0"), "line 1: \\x without two hexadecimal digits");
    EXPECT_EQ(errorOf("a=\\x"), "line 1: \\x without two hexadecimal digits");
    EXPECT_EQ(errorOf("a=\\x-1"), "line 1: \\x without two hexadecimal digits");
    EXPECT_EQ(errorOf(std::string("a=\0", 3)),
              "line 1: a control character that is not written as \\x00");
    EXPECT_EQ(errorOf("a=\x1B[1m"), "line 1: a control character that is not written as \\x1B");
    EXPECT_EQ(errorOf("a\x7F=1"), "line 1: a control character that is not written as \\x7F");
}

TEST(SettingsText, IsWrittenSoThatPeopleCanReadIt)
{
    EXPECT_EQ(textOf("RadiolinkMode", "Rl5"), "RadiolinkMode=Rl5\n");
    EXPECT_EQ(textOf("a b", "c d = #"), "a b=c d = #\n");
    EXPECT_EQ(textOf(" a=b ", " c "), "\\x20a\\x3Db\\x20=\\x20c\\x20\n");
    EXPECT_EQ(textOf("#a#", "#\\\n"), "\\x23a#=#\\\\\\n\n");
    EXPECT_EQ(textOf(std::string(1, '\0'), "\r\t\x1B\x7F\xC3\xA4"),
              "\\x00=\\x0D\\x09\\x1B\\x7F\\xC3\\xA4\n");
    EXPECT_EQ(textOf(" ", "  "), "\\x20=\\x20\\x20\n");
}

TEST(SettingsText, TakesKeysUpToALimit)
{
    SettingsText text;
    EXPECT_THROW(text.set("", "value"), std::runtime_error);
    EXPECT_THROW(text.set(std::string(512, 'k'), "value"), std::runtime_error);
    text.set(std::string(511, '\xFF'), "value");
    EXPECT_EQ(entriesOf(text.text()), Entries({{std::string(511, '\xFF'), "value"}}));
}

const std::string Written = "# The board on the roof\n"
                            "\n"
                            "  RadiolinkMode = Rl4  \n"
                            "#FpgaVariant=TwoTdm\n"
                            "other=1\n"
                            " \t";

TEST(SettingsText, KeepsTheLinesThatAreNotChanged)
{
    SettingsText text(Written);
    EXPECT_EQ(text.text(), Written + '\n');
    text.set("RadiolinkMode", "Rl5");
    text.set("FpgaVariant", "TwoTdm");
    EXPECT_EQ(text.text(), "# The board on the roof\n"
                           "\n"
                           "RadiolinkMode=Rl5\n"
                           "#FpgaVariant=TwoTdm\n"
                           "other=1\n"
                           " \t\n"
                           "FpgaVariant=TwoTdm\n");
    text.clear("RadiolinkMode");
    text.clear("nothing");
    EXPECT_EQ(text.text(), "# The board on the roof\n"
                           "\n"
                           "#FpgaVariant=TwoTdm\n"
                           "other=1\n"
                           " \t\n"
                           "FpgaVariant=TwoTdm\n");
}

TEST(SettingsText, HasOneLineOfAKeyThatWasSetAndNoneOfOneThatWasCleared)
{
    SettingsText text("a=1\nb=1\na=2\n#\na=3\nb=2\n");
    text.set("a", "4");
    EXPECT_EQ(text.text(), "b=1\n#\na=4\nb=2\n");
    text.clear("b");
    EXPECT_EQ(text.text(), "#\na=4\n");
}

/** Bytes of all kinds, those that mean something more often than others. */
std::string randomBytes(std::minstd_rand& random, std::size_t minimum)
{
    const std::string special(" \t\r\n\\=#xn0A\0\x7F\xFF", 14);
    std::string bytes;
    const std::size_t size = minimum + random() % 12;
    while (bytes.size() < size) {
        bytes += random() % 2 == 0 ? special[random() % special.size()]
                                   : static_cast<char>(random() % 256);
    }
    return bytes;
}

TEST(SettingsText, HasWhatWasSetWhateverTheBytes)
{
    std::minstd_rand random(20261121);
    for (int round = 0; round < 2000; ++round) {
        Entries expected;
        SettingsText text;
        for (int i = 0; i < 5; ++i) {
            const std::string key = randomBytes(random, 1);
            expected[key] = randomBytes(random, 0);
            text.set(key, expected[key]);
        }
        ASSERT_EQ(entriesOf(text.text()), expected) << text.text();
        text.clear(expected.begin()->first);
        expected.erase(expected.begin());
        ASSERT_EQ(entriesOf(text.text()), expected) << text.text();
    }
}

TEST(SettingsText, HasAnyByteInAnyPlace)
{
    for (int byte = 0; byte < 256; ++byte) {
        const std::string one(1, static_cast<char>(byte));
        for (const std::string& bytes : {one, one + "a", "a" + one, "a" + one + "a", one + one}) {
            EXPECT_EQ(entriesOf(textOf(bytes, bytes)), Entries({{bytes, bytes}})) << byte;
        }
    }
}

} // namespace
