// Capsules that bsp-diag did not write: of somebody who means harm, or damaged on the way.

#include "DiagTest.h"

#include <chrono>
#include <filesystem>

#include <sys/stat.h>

namespace
{

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;
using testsupport::Outcome;

constexpr const char* Refusal = "bsp-board: cannot use 'CAPSULE': ";

class WrongCapsule : public DiagTest
{
protected:
    void SetUp() override
    {
        DiagTest::SetUp();
        fs::create_directory(file("place"));
        const StoreUser user(board(), {"open"});
        ASSERT_EQ(diag({"capture", file("good")}).run().status, 0);
        m_good = testsupport::readFile(file("good"));
    }

    /** A good capsule's text with one part of it replaced. */
    std::string changed(const std::string& part, const std::string& by) const
    {
        const std::size_t at = m_good.find(part);
        EXPECT_NE(at, std::string::npos) << part;
        return std::string(m_good).replace(at, part.size(), by);
    }

    Outcome create(const std::string& capsule) const
    {
        Outcome outcome =
            tool("bsp-board", {"create", file("place/copy"), "--capsule", capsule}).run();
        for (std::string* const text : {&outcome.out, &outcome.err}) {
            const std::size_t at = text->find(capsule);
            if (at != std::string::npos) {
                text->replace(at, capsule.size(), "CAPSULE");
            }
        }
        return outcome;
    }
    Outcome createOf(const std::string& text) const
    {
        testsupport::writeFile(file("capsule"), text);
        return create(file("capsule"));
    }

    /** Why a capsule is refused, of which nothing is made. */
    std::string refusalOf(const Outcome& outcome) const
    {
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_TRUE(fs::is_empty(file("place")));
        return outcome.err;
    }
    std::string refusalOf(const std::string& text) const { return refusalOf(createOf(text)); }

private:
    std::string m_good;
};

TEST_F(WrongCapsule, IsRefusedWhenItIsNone)
{
    const std::string none = std::string(Refusal) + "it is no capsule";
    EXPECT_THAT(refusalOf("nothing"), StartsWith(none + ": "));
    EXPECT_EQ(refusalOf(R"({"schema": "bsp-diag/2", "kind": "capsule"})"),
              none + " of bsp-diag/1\n");
    EXPECT_EQ(refusalOf(changed("\"kind\": \"capsule\"", "\"kind\": \"board\"")),
              none + " of bsp-diag/1\n");
    EXPECT_THAT(refusalOf(changed("\"heldMutexes\"", "\"others\"")),
                HasSubstr("key 'heldMutexes' not found"));
    EXPECT_THAT(refusalOf("\xff"), HasSubstr("last read: '\\xff'"));
}

TEST_F(WrongCapsule, IsRefusedWhenSizesAreWrong)
{
    const std::string code = "\"eeprom\": \"4100000001000100\"";
    EXPECT_EQ(refusalOf(changed(code, "\"eeprom\": \"41\"")),
              std::string(Refusal) + "the EEPROM has 1 bytes instead of 8\n");
    EXPECT_EQ(refusalOf(changed(code, "\"eeprom\": \"4x\"")),
              std::string(Refusal) + "'4x' are no hexadecimal digits of bytes\n");
    EXPECT_EQ(refusalOf(changed("\"blocks\": [\n        \"00", "\"blocks\": [\n        \"0000")),
              std::string(Refusal) + "the warm area has 32769 bytes instead of 32768\n");
}

TEST_F(WrongCapsule, IsRefusedWhenNumbersAreNone)
{
    for (const std::string number : {"-1", "1.5", "4294967296", "\"1\"", "true"}) {
        EXPECT_EQ(refusalOf(changed("\"resetCause\": 1,\n    \"coldMarker\"",
                                    "\"resetCause\": " + number + ",\n    \"coldMarker\"")),
                  Refusal + number + " is no number from 0 to 4294967295\n");
    }
    EXPECT_EQ(refusalOf(changed("\"semaphore\": 1", "\"semaphore\": 2147483648")),
              std::string(Refusal) + "2147483648 is no number from 0 to 2147483647\n");
    EXPECT_EQ(refusalOf(changed("\"mode\": 438", "\"mode\": -438")),
              std::string(Refusal) + "-438 is no number from 0 to 4294967295\n");
    EXPECT_THAT(refusalOf(changed("\"coldMarker\": false,\n    \"settings\": {\n      \"",
                                  "\"coldMarker\": 0,\n    \"settings\": {\n      \"")),
                HasSubstr("type must be boolean"));
}

/** Documents on which the parser, or what it makes of them, would spend hours. */
TEST_F(WrongCapsule, IsRefusedAtOnceWhenItIsMuchTooLarge)
{
    const auto begin = std::chrono::steady_clock::now();
    const std::string tooMany =
        std::string(Refusal) + "it is no capsule: it has too many entries\n";
    EXPECT_EQ(refusalOf(std::string(1000000, '[')), tooMany);
    std::string entries = "{";
    for (int i = 0; i < 100000; ++i) {
        entries += "\"" + std::to_string(i) + "\": 0,";
    }
    EXPECT_EQ(refusalOf(entries + "\"end\": 0}"), tooMany);
    fs::resize_file(file("good"), 16UL * 1024 * 1024 + 1);
    EXPECT_EQ(refusalOf(create(file("good"))),
              std::string(Refusal) + "it has more than 16777216 bytes\n");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
}

TEST_F(WrongCapsule, IsRefusedWhenItIsNoFile)
{
    ASSERT_EQ(::mkfifo(file("capsule").c_str(), 0600), 0);
    EXPECT_THAT(refusalOf(create(file("capsule"))), StartsWith(Refusal)) << "it waits for nobody";
    EXPECT_EQ(refusalOf(create(file("place"))),
              "bsp-board: cannot read 'CAPSULE': Is a directory\n");
}

TEST_F(WrongCapsule, ReachesNothingOutsideOfTheBoard)
{
    const std::string outside = file("outside");
    fs::create_directory(outside);
    testsupport::writeFile(outside + "/trigger", "precious");
    for (const std::string name : {"../../../outside", "../..", "", ".", "red/trigger"}) {
        const Outcome outcome = createOf(changed("\"green\": {\n        \"trigger\"",
                                                 "\"" + name + "\": {\n        \"trigger\""));
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        EXPECT_THAT(outcome.out,
                    HasSubstr("not carried over: LED " + name + ": there is none of that name\n"));
        fs::remove_all(file("place/copy"));
    }
    EXPECT_EQ(testsupport::readFile(outside + "/trigger"), "precious");
    EXPECT_FALSE(fs::exists(outside + "/korvanta_state"));
    const Outcome outcome = createOf(changed("\"name\": \"DtcmSync\"", "\"name\": \"../../x\""));
    EXPECT_THAT(outcome.out, HasSubstr("not carried over: the contents of /dev/shm/../../x\n"));
    EXPECT_FALSE(fs::exists(file("place/x")));
}

TEST_F(WrongCapsule, WritesNothingToATerminalThatIsNoText)
{
    const Outcome outcome = createOf(
        changed("\"heldMutexes\": []", "\"heldMutexes\": [\"a\\nline and \\u001b[31ma colour\"]"));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.out, HasSubstr("not carried over: that a mutex was held, a\\x0aline and "
                                       "\\x1b[31ma colour\n"));
}

} // namespace
