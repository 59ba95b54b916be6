/**
 * @file
 * @brief The group "bsp" on a board that its environment describes: see BoardFromEnvironment.cpp
 * and ScriptedAnswers.cpp for the variables.
 */
#include "Files.h"
#include "Program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <sstream>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

using namespace testsupport;
using Environment = std::map<std::string, std::string>;
using Table = std::vector<Golden>;

const std::string Usage = "Usage: bsp <function> [arguments]\n";
const std::string Listing =
    "bsp getHwRevision        Read hardware revision.\n"
    "bsp getFpgaPath          bsp getFpgaPath <name>. For a specific fpga return an fpga sub "
    "path.\n"
    "bsp getBoardId           Get board ID (in text format: KT4752_REV_B, VX4791_REV_A etc.).\n"
    "bsp getProductId         Get product ID (in text format: KT4752, VX4791 etc.).\n"
    "bsp getControlBackplane  Get backplane variant (in text format: Pci, Pcie, Ethernet, None).\n"
    "bsp getSlotId            Get the slot position in the rack. -1 indicates not yet set, 0 "
    "indicates not applicable\n"
    "bsp getDspType           Get DSP variant (in text format: BCM85110, BCM85655 etc.).\n"
    "bsp getRadiolinkMode     Get radio-link mode (in text format: Rl4 or Rl5).\n"
    "bsp setRadiolinkMode     Set radio-link mode (in text format: Rl4 or Rl5).\n"
    "bsp clearRadiolinkMode   Clear specific radio-link mode (meaning returning to default mode).\n"
    "bsp getTrafClientMode    Get TrafClientMode (in text format: Rlps or Lads). DEPRECATED: "
    "Returns value based on RadiolinkMode\n"
    "bsp setTrafClientMode    DEPRECATED: Does nothing\n"
    "bsp clearTrafClientMode  DEPRECATED: Does nothing\n"
    "bsp getTrafFpgaType      Get FPGA variant (in text format: Bittern, Jackdaw, Osprey etc.).\n"
    "bsp getKernelRState      Get kernel R-State (in text format: R1A01 etc.).\n"
    "bsp getUbootProductInfo  Get U-boot product number and r-state.\n";

Program bsp(std::vector<std::string> arguments = {}, Environment environment = {})
{
    Program program = programAt(BSP_TEST_FAKE_BOARD_TOOL, std::move(arguments));
    program.name = "bsp";
    program.environment = std::move(environment);
    return program;
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

/** Describes such boards by the value of the word. */
auto hasWord(int index)
{
    return [index](int value) { return boardWithWord(index, value); };
}

/** The same with a setting of the traffic FPGA. */
Environment boardWithFpga(int word, const std::string& setting)
{
    Environment board = boardWithWord(3, word);
    board["FAKE_BOARD_FPGA_VARIANT"] = setting;
    return board;
}

Environment withProduct(const std::string& code)
{
    return {{"FAKE_BOARD_PRODUCT_CODE", code}};
}

Environment withRevision(const std::string& revision)
{
    return {{"FAKE_BOARD_HW_REVISION", revision}};
}

Environment withMode(const std::string& mode)
{
    return {{"FAKE_BOARD_RADIOLINK_MODE", mode}};
}

Environment answeringMode(const std::string& number)
{
    return {{"SCRIPTED_RADIOLINK_MODE", number}};
}

/** Rows of one function, whose answer depends on the board alone. */
template <typename Board, typename Describe>
Table rowsOf(const std::string& function, const Describe& describe,
             const std::vector<std::pair<Board, std::string>>& answers)
{
    Table table;
    for (const auto& [board, text] : answers) {
        table.push_back({{function}, answer(text + '\n'), describe(board)});
    }
    return table;
}

TEST(BspGroup, ListsItsFunctionsBehindTheUsage)
{
    expectGolden(bsp(), {{{}, {Listing, Usage, 1}}});
    Program merged = bsp();
    merged.merged = true;
    expectGolden(merged, {{{}, {Usage + Listing, "", 1}}});
}

TEST(BspGroup, WritesItsListingLineByLine)
{
    // A packet socket keeps the writes apart.
    std::array<int, 2> sockets{};
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sockets.data()), 0);
    prepared(bsp(), [&sockets] { ::dup2(sockets[1], STDOUT_FILENO); }).run();
    std::string text;
    std::array<char, 4096> packet{};
    for (ssize_t size = 0;
         (size = ::recv(sockets[0], packet.data(), packet.size(), MSG_DONTWAIT)) > 0;) {
        const std::string line(packet.data(), static_cast<std::size_t>(size));
        EXPECT_EQ(line.find('\n'), line.size() - 1) << line;
        text += line;
    }
    EXPECT_EQ(text, Listing);
    ::close(sockets[0]);
    ::close(sockets[1]);
}

TEST(BspGroup, HasTheHandlersStatusWhenTheAnswerCannotBeWritten)
{
    Program program = bsp();
    program.prepare = [] { ::dup2(::open("/dev/full", O_WRONLY | O_CLOEXEC), STDOUT_FILENO); };
    EXPECT_EQ(program.run().status, 1);
    program.arguments = {"getBoardId"};
    EXPECT_EQ(program.run().status, 0);
    program.arguments = {"getFpgaPath"};
    EXPECT_EQ(program.run().status, 1);
}

TEST(GetHwRevision, PrintsAnUnsignedNumber)
{
    expectGolden(
        bsp(), rowsOf<std::string>(
                   "getHwRevision", withRevision,
                   {{"3", "3"}, {"0", "0"}, {"-1", "4294967295"}, {"-2147483648", "2147483648"}}));
}

TEST(GetFpgaPath, PrintsThePathOfItsOneArgument)
{
    const Outcome misuse = refusal("Error: valid argument are <FGPA name> [<HW revision>]\n");
    expectGolden(bsp(), {{{"getFpgaPath", "osprey2"}, answer("fwq402936_3/R9K/fwq402936_3.bin\n")},
                         {{"getFpgaPath", "pci"}, answer("fwqd550263_3/R1B01/fwqd550263_3.bin\n")},
                         {{"getFpgaPath", "Osprey2"}, answer("\n")},
                         {{"getFpgaPath", ""}, answer("\n")},
                         {{"getFpgaPath"}, misuse},
                         {{"getFpgaPath", "osprey", "R1_P2"}, misuse},
                         {{"getFpgaPath", "osprey", "R1_P2", "x"}, misuse}});
}

TEST(GetBoardId, PrintsTheTextOrNothingAtAllForANullText)
{
    expectGolden(bsp(), {{{"getBoardId"}, answer("Unknown board revision\n"), withProduct("1")},
                         {{"getBoardId"}, answer(), {{"SCRIPTED_BOARD_ID_TEXT", "null"}}}});
}

TEST(GetProductId, PrintsTheName)
{
    const std::vector<std::pair<std::string, std::string>> names = {
        {"1", "NXU4A"},      {"2", "NXU2001"},   {"3", "NXU2002"},   {"4", "KT4851_1"},
        {"5", "KT4851_2"},   {"6", "KT4766"},    {"7", "DWB2001"},   {"9", "KT4851_3"},
        {"10", "DWB2002"},   {"11", "KT4851_4"}, {"12", "NXU2003"},  {"13", "NXU2004"},
        {"14", "DWB2003"},   {"0", "EndOfList"}, {"8", "EndOfList"}, {"15", "EndOfList"},
        {"-1", "EndOfList"},
    };
    expectGolden(bsp(), rowsOf("getProductId", withProduct, names));
}

TEST(GetControlBackplane, PrintsTheName)
{
    expectGolden(bsp(), rowsOf<int>("getControlBackplane", hasWord(2),
                                    {{0, "Pci"}, {1, "Pcie"}, {2, "Ethernet"}, {3, "EndOfList"}}));
}

TEST(GetDspType, PrintsTheName)
{
    const std::vector<std::pair<int, std::string>> names = {
        {0, "BCM85650"}, {2, "BCM85655"}, {4, "BCM85651"}, {1, "EndOfList"}, {3, "EndOfList"},
    };
    expectGolden(bsp(), rowsOf("getDspType", hasWord(5), names));
}

TEST(GetTrafFpgaType, PrintsTheName)
{
    const std::vector<std::pair<int, std::string>> names = {
        {0, "Fulmar"}, {3, "Linnet"},  {4, "Nightjar"},  {5, "Osprey"},    {6, "Puffin"},
        {7, "Quail"},  {8, "Redwing"}, {1, "EndOfList"}, {9, "EndOfList"},
    };
    expectGolden(bsp(), rowsOf("getTrafFpgaType", hasWord(3), names));
}

TEST(GetTrafFpgaType, PrintsTheNameOfTheOtherVariant)
{
    expectGolden(
        bsp(), {{{"getTrafFpgaType"}, answer("Gannet\n"), boardWithFpga(0, "TwoTdm")},
                {{"getTrafFpgaType"}, answer("Mallard\n"), boardWithFpga(3, "OneTdmRleEqpNoMlhc")},
                {{"getTrafFpgaType"}, answer("Osprey2\n"), boardWithFpga(5, "TwoTdm")},
                {{"getTrafFpgaType"}, answer("Siskin\n"), boardWithFpga(8, "TwoTdm")}});
}

TEST(GetTrafFpgaType, EndsWithTheStoresException)
{
    Environment board = boardWithWord(3, 0);
    board["FAKE_BOARD_STORE"] = "throws";
    const Outcome outcome = bsp({"getTrafFpgaType"}, board).run();
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.status, 128 + SIGABRT);
}

TEST(GetRadiolinkMode, PrintsTheNameOrTheEndOfTheListForAnyOtherMode)
{
    expectGolden(bsp(), {{{"getRadiolinkMode"}, answer("Rl4\n")}});
    expectGolden(bsp(), rowsOf<std::string>("getRadiolinkMode", withMode,
                                            {{"Rl4", "Rl4"}, {"Rl5", "Rl5"}, {"Rl6", "Rl4"}}));
    expectGolden(
        bsp(), rowsOf<std::string>("getRadiolinkMode", answeringMode,
                                   {{"2", "EndOfList"}, {"7", "EndOfList"}, {"-1", "EndOfList"}}));
}

TEST(GetTrafClientMode, FollowsTheRadiolinkMode)
{
    expectGolden(bsp(), {{{"getTrafClientMode"}, answer("Rlps\n")}});
    expectGolden(bsp(), rowsOf<std::string>("getTrafClientMode", withMode,
                                            {{"Rl4", "Rlps"}, {"Rl5", "Lads"}, {"x", "Rlps"}}));
    expectGolden(bsp(), rowsOf<std::string>("getTrafClientMode", answeringMode,
                                            {{"2", "Rlps"}, {"7", "Rlps"}, {"-1", "Rlps"}}));
}

TEST(BspQuery, IgnoresSurplusArguments)
{
    Table table;
    for (const auto& [function, text] : {std::pair{"getHwRevision", "2\n"},
                                         {"getBoardId", "Unknown board revision\n"},
                                         {"getProductId", "KT4851_1\n"},
                                         {"getControlBackplane", "Pci\n"},
                                         {"getDspType", "BCM85650\n"},
                                         {"getRadiolinkMode", "Rl4\n"},
                                         {"getTrafClientMode", "Rlps\n"},
                                         {"getTrafFpgaType", "Fulmar\n"}})
    {
        table.push_back({{function, "surplus", "--help"}, answer(text)});
    }
    expectGolden(bsp({}, {{"FAKE_BOARD_CODE", "0 0 0 0 0 0 0 0"},
                          {"FAKE_BOARD_PRODUCT_CODE", "4"},
                          {"FAKE_BOARD_HW_REVISION", "2"}}),
                 table);
}

TEST(BspQuery, ShowsAFailureOnlyInItsAnswer)
{
    expectGolden(bsp({}, {{"FAKE_BOARD_READ_RESULT", "5"}}),
                 {{{"getHwRevision"}, answer("24\n")},
                  {{"getProductId"}, answer("EndOfList\n")},
                  {{"getControlBackplane"}, answer("EndOfList\n")},
                  {{"getDspType"}, answer("EndOfList\n")},
                  {{"getTrafFpgaType"}, answer("EndOfList\n")}});
}

/** A command that changes settings, what the store is like and what it is told. */
struct Change
{
    std::vector<std::string> arguments;
    Outcome outcome;
    std::string calls; /**< With the value's NUL as a dot. */
    std::string store = "";
};

TEST(Setting, TellsTheStoreAndPrintsNothing)
{
    const Outcome misuse = refusal("Error: valid arguments are <Rl4 | Rl5>\n");
    std::vector<Change> table{
        {{"setRadiolinkMode", "Rl4"}, answer(), "set RadiolinkMode mode.Rl4\n"},
        {{"setRadiolinkMode", "Rl5"}, answer(), "set RadiolinkMode mode.Rl5\n"},
        {{"setRadiolinkMode", "Rl5"}, answer(), "set RadiolinkMode mode.Rl5\n", "refuses"},
        {{"setRadiolinkMode"}, misuse, ""},
        {{"setRadiolinkMode", "Rl4", "x"}, misuse, ""},
        {{"clearRadiolinkMode"}, answer(), "clear RadiolinkMode\n"},
        {{"clearRadiolinkMode", "Rl4", "x"}, answer(), "clear RadiolinkMode\n"},
        {{"clearRadiolinkMode"}, answer(), "clear RadiolinkMode\n", "refuses"},
        {{"setTrafClientMode"}, answer(), ""},
        {{"setTrafClientMode", "Lads", "x", "y"}, answer(), "", "throws"},
        {{"clearTrafClientMode"}, answer(), ""},
        {{"clearTrafClientMode", "Lads", "x", "y"}, answer(), "", "throws"},
    };
    for (const char* mode : {"rl4", "RL5", "", "Rl", "Rl45", "Rl4 ", " Rl5", "0", "1", "EndOfList"})
    {
        table.push_back({{"setRadiolinkMode", mode}, misuse, ""});
    }
    const TemporaryDirectory directory;
    const std::string file = directory.file("calls");
    for (const Change& row : table) {
        expectGolden(bsp(),
                     {{row.arguments,
                       row.outcome,
                       {{"FAKE_BOARD_STORE", row.store}, {"FAKE_BOARD_STORE_CALLS", file}}}});
        std::string calls = readFile(file);
        std::replace(calls.begin(), calls.end(), '\0', '.');
        EXPECT_EQ(calls, row.calls) << testing::PrintToString(row.arguments) << row.store;
    }
}

} // namespace
