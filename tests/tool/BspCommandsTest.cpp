#include "Files.h"
#include "Program.h"
#include "TemporaryDirectory.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <sstream>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

using testing::Each;
using testing::Matches;
using testsupport::Outcome;
using testsupport::Program;
using Environment = std::map<std::string, std::string>;

Program bsp(std::vector<std::string> arguments, Environment environment = {})
{
    Program program{};
    program.path = BSP_TEST_FAKE_BOARD_TOOL;
    program.name = "bsp";
    program.arguments = std::move(arguments);
    program.environment = std::move(environment);
    return program;
}

/** An answer: one line and success. */
void expectAnswer(const Outcome& outcome, const std::string& line)
{
    EXPECT_EQ(outcome.out, line + '\n');
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0);
}

void expectSilence(const Outcome& outcome)
{
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0);
}

void expectError(const Outcome& outcome, const std::string& line)
{
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, line + '\n');
    EXPECT_EQ(outcome.status, 1);
}

/** Environment of a board whose hardware code has one word that is not 0. */
Environment boardWithWord(int index, int value)
{
    std::ostringstream code;
    for (int word = 0; word < 8; ++word) {
        code << (word == index ? value : 0) << ' ';
    }
    return {{"FAKE_BOARD_CODE", code.str()}};
}

std::vector<std::string> linesOf(const std::string& text)
{
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

const std::vector<std::string> listing = {
    "bsp getHwRevision        Read hardware revision.",
    "bsp getFpgaPath          bsp getFpgaPath <name>. For a specific fpga return an fpga sub path.",
    "bsp getBoardId           Get board ID (in text format: KT4752_REV_B, VX4791_REV_A etc.).",
    "bsp getProductId         Get product ID (in text format: KT4752, VX4791 etc.).",
    "bsp getControlBackplane  Get backplane variant (in text format: Pci, Pcie, Ethernet, None).",
    "bsp getDspType           Get DSP variant (in text format: BCM85110, BCM85655 etc.).",
    "bsp getRadiolinkMode     Get radio-link mode (in text format: Rl4 or Rl5).",
    "bsp setRadiolinkMode     Set radio-link mode (in text format: Rl4 or Rl5).",
    "bsp clearRadiolinkMode   Clear specific radio-link mode (meaning returning to default mode).",
    std::string("bsp getTrafClientMode    Get TrafClientMode (in text format: Rlps or Lads). ") +
        "DEPRECATED: Returns value based on RadiolinkMode",
    "bsp setTrafClientMode    DEPRECATED: Does nothing",
    "bsp clearTrafClientMode  DEPRECATED: Does nothing",
    "bsp getTrafFpgaType      Get FPGA variant (in text format: Bittern, Jackdaw, Osprey etc.).",
};

/** The lines of a text that are in the listing above, in the text's order. */
std::vector<std::string> listed(const std::string& text)
{
    std::vector<std::string> lines;
    for (const std::string& line : linesOf(text)) {
        if (Matches(testing::Contains(line))(listing)) {
            lines.push_back(line);
        }
    }
    return lines;
}

TEST(BspListing, HasTheBoardsFunctionsInOrder)
{
    const Outcome outcome = bsp({}).run();
    EXPECT_EQ(outcome.err, "Usage: bsp <function> [arguments]\n");
    EXPECT_EQ(listed(outcome.out), listing);
    EXPECT_EQ(outcome.out.back(), '\n');
    EXPECT_THAT(linesOf(outcome.out), Each(testing::StartsWith("bsp ")));
    EXPECT_EQ(outcome.status, 1);
}

TEST(BspListing, FollowsTheUsage)
{
    Program program = bsp({});
    program.merged = true;
    const Outcome outcome = program.run();
    EXPECT_EQ(linesOf(outcome.out).front(), "Usage: bsp <function> [arguments]");
    EXPECT_EQ(listed(outcome.out), listing);
}

TEST(BspListing, IsWrittenLineByLine)
{
    // A packet socket keeps the writes apart.
    std::array<int, 2> sockets{};
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sockets.data()), 0);
    Program program = bsp({});
    program.prepare = [&sockets] { ::dup2(sockets[1], STDOUT_FILENO); };
    program.run();
    std::string text;
    std::array<char, 4096> packet{};
    for (ssize_t size = 0;
         (size = ::recv(sockets[0], packet.data(), packet.size(), MSG_DONTWAIT)) > 0;) {
        const std::string line(packet.data(), static_cast<std::size_t>(size));
        EXPECT_EQ(line.find('\n'), line.size() - 1) << line;
        text += line;
    }
    EXPECT_EQ(listed(text), listing);
    ::close(sockets[0]);
    ::close(sockets[1]);
}

Program toFullDevice(Program program)
{
    program.prepare = [] { ::dup2(::open("/dev/full", O_WRONLY | O_CLOEXEC), STDOUT_FILENO); };
    return program;
}

TEST(BspStatus, IsTheHandlersWhenTheAnswerCannotBeWritten)
{
    EXPECT_EQ(toFullDevice(bsp({"getBoardId"})).run().status, 0);
    EXPECT_EQ(toFullDevice(bsp({"getFpgaPath"})).run().status, 1);
    EXPECT_EQ(toFullDevice(bsp({})).run().status, 1);
}

TEST(GetHwRevision, PrintsAnUnsignedNumber)
{
    expectAnswer(bsp({"getHwRevision"}, {{"FAKE_BOARD_HW_REVISION", "3"}}).run(), "3");
    expectAnswer(bsp({"getHwRevision"}, {{"FAKE_BOARD_HW_REVISION", "0"}}).run(), "0");
    expectAnswer(bsp({"getHwRevision"}, {{"FAKE_BOARD_HW_REVISION", "-1"}}).run(), "4294967295");
    expectAnswer(bsp({"getHwRevision"}, {{"FAKE_BOARD_HW_REVISION", "-2147483648"}}).run(),
                 "2147483648");
}

TEST(GetFpgaPath, PrintsThePath)
{
    expectAnswer(bsp({"getFpgaPath", "osprey2"}).run(), "fwq402936_3/R9K/fwq402936_3.bin");
    expectAnswer(bsp({"getFpgaPath", "pci"}).run(), "fwqd550263_3/R1B01/fwqd550263_3.bin");
}

TEST(GetFpgaPath, PrintsAnEmptyLineForAnUnknownName)
{
    expectAnswer(bsp({"getFpgaPath", "Osprey2"}).run(), "");
    expectAnswer(bsp({"getFpgaPath", ""}).run(), "");
}

TEST(GetFpgaPath, TakesExactlyOneArgument)
{
    const std::string error = "Error: valid argument are <FGPA name> [<HW revision>]";
    expectError(bsp({"getFpgaPath"}).run(), error);
    expectError(bsp({"getFpgaPath", "osprey", "R1_P2"}).run(), error);
    expectError(bsp({"getFpgaPath", "osprey", "R1_P2", "x"}).run(), error);
}

TEST(GetBoardId, PrintsTheText)
{
    expectAnswer(bsp({"getBoardId"}, {{"FAKE_BOARD_PRODUCT_CODE", "1"}}).run(),
                 "Unknown board revision");
}

TEST(GetBoardId, PrintsNothingAtAllForANullText)
{
    expectSilence(bsp({"getBoardId"}, {{"SCRIPTED_BOARD_ID_TEXT", "null"}}).run());
}

TEST(GetProductId, PrintsTheName)
{
    for (const auto& [code, name] : {std::pair{"1", "NXU4A"},
                                     {"2", "NXU2001"},
                                     {"3", "NXU2002"},
                                     {"4", "KT4851_1"},
                                     {"5", "KT4851_2"},
                                     {"6", "KT4766"},
                                     {"7", "DWB2001"},
                                     {"9", "KT4851_3"},
                                     {"10", "DWB2002"},
                                     {"11", "KT4851_4"},
                                     {"12", "NXU2003"},
                                     {"13", "NXU2004"},
                                     {"14", "DWB2003"},
                                     {"0", "EndOfList"},
                                     {"8", "EndOfList"},
                                     {"15", "EndOfList"},
                                     {"-1", "EndOfList"}})
    {
        expectAnswer(bsp({"getProductId"}, {{"FAKE_BOARD_PRODUCT_CODE", code}}).run(), name);
    }
}

TEST(GetControlBackplane, PrintsTheName)
{
    for (const auto& [word, name] :
         {std::pair{0, "Pci"}, {1, "Pcie"}, {2, "Ethernet"}, {3, "EndOfList"}})
    {
        expectAnswer(bsp({"getControlBackplane"}, boardWithWord(2, word)).run(), name);
    }
}

TEST(GetDspType, PrintsTheName)
{
    for (const auto& [word, name] : {std::pair{0, "BCM85650"},
                                     {2, "BCM85655"},
                                     {4, "BCM85651"},
                                     {1, "EndOfList"},
                                     {3, "EndOfList"}})
    {
        expectAnswer(bsp({"getDspType"}, boardWithWord(5, word)).run(), name);
    }
}

TEST(GetTrafFpgaType, PrintsTheName)
{
    for (const auto& [word, name] : {std::pair{0, "Fulmar"},
                                     {3, "Linnet"},
                                     {4, "Nightjar"},
                                     {5, "Osprey"},
                                     {6, "Puffin"},
                                     {7, "Quail"},
                                     {8, "Redwing"},
                                     {1, "EndOfList"},
                                     {9, "EndOfList"}})
    {
        expectAnswer(bsp({"getTrafFpgaType"}, boardWithWord(3, word)).run(), name);
    }
}

TEST(GetTrafFpgaType, PrintsTheNameOfTheOtherVariant)
{
    for (const auto& [word, setting, name] : {std::tuple{0, "TwoTdm", "Gannet"},
                                              {3, "OneTdmRleEqpNoMlhc", "Mallard"},
                                              {5, "TwoTdm", "Osprey2"},
                                              {8, "TwoTdm", "Siskin"}})
    {
        Environment board = boardWithWord(3, word);
        board["FAKE_BOARD_FPGA_VARIANT"] = setting;
        expectAnswer(bsp({"getTrafFpgaType"}, board).run(), name);
    }
}

TEST(GetTrafFpgaType, EndsWithTheStoresException)
{
    Environment board = boardWithWord(3, 0);
    board["FAKE_BOARD_STORE"] = "throws";
    const Outcome outcome = bsp({"getTrafFpgaType"}, board).run();
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.status, 128 + SIGABRT);
}

TEST(GetRadiolinkMode, PrintsTheName)
{
    expectAnswer(bsp({"getRadiolinkMode"}).run(), "Rl4");
    expectAnswer(bsp({"getRadiolinkMode"}, {{"FAKE_BOARD_RADIOLINK_MODE", "Rl4"}}).run(), "Rl4");
    expectAnswer(bsp({"getRadiolinkMode"}, {{"FAKE_BOARD_RADIOLINK_MODE", "Rl5"}}).run(), "Rl5");
    expectAnswer(bsp({"getRadiolinkMode"}, {{"FAKE_BOARD_RADIOLINK_MODE", "Rl6"}}).run(), "Rl4");
}

TEST(GetRadiolinkMode, PrintsTheEndOfTheListForAnyOtherMode)
{
    for (const char* mode : {"2", "7", "-1"}) {
        expectAnswer(bsp({"getRadiolinkMode"}, {{"SCRIPTED_RADIOLINK_MODE", mode}}).run(),
                     "EndOfList");
    }
}

TEST(GetTrafClientMode, FollowsTheRadiolinkMode)
{
    expectAnswer(bsp({"getTrafClientMode"}).run(), "Rlps");
    expectAnswer(bsp({"getTrafClientMode"}, {{"FAKE_BOARD_RADIOLINK_MODE", "Rl4"}}).run(), "Rlps");
    expectAnswer(bsp({"getTrafClientMode"}, {{"FAKE_BOARD_RADIOLINK_MODE", "Rl5"}}).run(), "Lads");
    expectAnswer(bsp({"getTrafClientMode"}, {{"FAKE_BOARD_RADIOLINK_MODE", "x"}}).run(), "Rlps");
    for (const char* mode : {"2", "7", "-1"}) {
        expectAnswer(bsp({"getTrafClientMode"}, {{"SCRIPTED_RADIOLINK_MODE", mode}}).run(), "Rlps");
    }
}

class Setting : public testing::Test
{
protected:
    /** Runs a function on a board whose store is as told. */
    Outcome run(std::vector<std::string> arguments, const std::string& store = "")
    {
        return bsp(std::move(arguments),
                   {{"FAKE_BOARD_STORE", store}, {"FAKE_BOARD_STORE_CALLS", m_calls}})
            .run();
    }

    /** What the last run told the store, with the value's NUL as a dot. */
    std::string calls() const
    {
        std::string text = testsupport::readFile(m_calls);
        std::replace(text.begin(), text.end(), '\0', '.');
        return text;
    }

private:
    testsupport::TemporaryDirectory m_directory;
    std::string m_calls = m_directory.file("calls");
};

TEST_F(Setting, SetRadiolinkModeStoresTheModeAndPrintsNothing)
{
    expectSilence(run({"setRadiolinkMode", "Rl4"}));
    EXPECT_EQ(calls(), "set RadiolinkMode mode.Rl4\n");
    expectSilence(run({"setRadiolinkMode", "Rl5"}));
    EXPECT_EQ(calls(), "set RadiolinkMode mode.Rl5\n");
}

TEST_F(Setting, SetRadiolinkModeDoesNotLookAtTheResult)
{
    expectSilence(run({"setRadiolinkMode", "Rl5"}, "refuses"));
    EXPECT_EQ(calls(), "set RadiolinkMode mode.Rl5\n");
}

TEST_F(Setting, SetRadiolinkModeRefusesEverythingElse)
{
    const std::string error = "Error: valid arguments are <Rl4 | Rl5>";
    for (const char* mode : {"rl4", "RL5", "", "Rl", "Rl45", "Rl4 ", " Rl5", "0", "1", "EndOfList"})
    {
        expectError(run({"setRadiolinkMode", mode}), error);
        EXPECT_EQ(calls(), "");
    }
    expectError(run({"setRadiolinkMode"}), error);
    expectError(run({"setRadiolinkMode", "Rl4", "x"}), error);
    EXPECT_EQ(calls(), "");
}

TEST_F(Setting, ClearRadiolinkModeRemovesTheModeAndPrintsNothing)
{
    expectSilence(run({"clearRadiolinkMode"}));
    EXPECT_EQ(calls(), "clear RadiolinkMode\n");
    expectSilence(run({"clearRadiolinkMode", "Rl4", "x"}));
    EXPECT_EQ(calls(), "clear RadiolinkMode\n");
}

TEST_F(Setting, ClearRadiolinkModeDoesNotLookAtTheResult)
{
    expectSilence(run({"clearRadiolinkMode"}, "refuses"));
    EXPECT_EQ(calls(), "clear RadiolinkMode\n");
}

TEST_F(Setting, TrafClientModeIsNeitherSetNorCleared)
{
    for (const char* function : {"setTrafClientMode", "clearTrafClientMode"}) {
        expectSilence(run({function}));
        EXPECT_EQ(calls(), "");
        expectSilence(run({function, "Lads", "x", "y"}, "throws"));
        EXPECT_EQ(calls(), "");
    }
}

TEST(BspQuery, IgnoresSurplusArguments)
{
    const Environment board = {{"FAKE_BOARD_CODE", "0 0 0 0 0 0 0 0"},
                               {"FAKE_BOARD_PRODUCT_CODE", "4"},
                               {"FAKE_BOARD_HW_REVISION", "2"}};
    for (const auto& [function, answer] : {std::pair{"getHwRevision", "2"},
                                           {"getBoardId", "Unknown board revision"},
                                           {"getProductId", "KT4851_1"},
                                           {"getControlBackplane", "Pci"},
                                           {"getDspType", "BCM85650"},
                                           {"getRadiolinkMode", "Rl4"},
                                           {"getTrafClientMode", "Rlps"},
                                           {"getTrafFpgaType", "Fulmar"}})
    {
        expectAnswer(bsp({function, "surplus", "--help"}, board).run(), answer);
    }
}

TEST(BspQuery, ShowsAFailureOnlyInItsAnswer)
{
    const Environment board = {{"FAKE_BOARD_READ_RESULT", "5"}};
    expectAnswer(bsp({"getHwRevision"}, board).run(), "24");
    for (const char* function :
         {"getProductId", "getControlBackplane", "getDspType", "getTrafFpgaType"})
    {
        expectAnswer(bsp({function}, board).run(), "EndOfList");
    }
}

} // namespace
