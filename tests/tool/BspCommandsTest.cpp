#include "BspTool.h"

#include <csignal>
#include <sstream>
#include <tuple>

namespace
{

using bsptool::bsp;
using bsptool::Environment;
using bsptool::expectAnswer;
using bsptool::expectError;
using bsptool::expectSilence;
using testsupport::Outcome;

/** Environment of a board whose hardware code has one word that is not 0. */
Environment boardWithWord(int index, int value)
{
    std::ostringstream code;
    for (int word = 0; word < 8; ++word) {
        code << (word == index ? value : 0) << ' ';
    }
    return {{"FAKE_BOARD_CODE", code.str()}};
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
