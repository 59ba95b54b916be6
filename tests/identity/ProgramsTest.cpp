#include "Files.h"
#include "Program.h"

#include <gmock/gmock.h>

namespace
{

using namespace testsupport;
using testing::UnorderedElementsAre;

Outcome run(std::vector<std::string> arguments)
{
    Program program = programAt(BSP_TEST_C_PROGRAM, std::move(arguments));
    program.environment = {
        {"FAKE_BOARD_CODE", "0 1 2 8 0 4 255 1"}, {"FAKE_BOARD_PRODUCT_CODE", "11"},
        {"FAKE_BOARD_HW_REVISION", "3"},          {"FAKE_BOARD_FPGA_VARIANT", "TwoTdm"},
        {"FAKE_BOARD_RADIOLINK_MODE", "Rl5"},
    };
    return program.run();
}

TEST(CProgram, LearnsWhatBoardItRunsOn)
{
    EXPECT_EQ(run({}), answer("variant: revision 3, product code 11, code 0 1 2 8 0 4 255 1\n"
                              "board 917507 Unknown board revision Unknown board revision\n"
                              "revision 3 product 14\n"
                              "dsp 6 fpga 20 platform 2\n"
                              "backplanes 2 3\n"
                              "channels 2 radiolinks 2 switch 0\n"
                              "paths fwqd550263_3/R1B01/fwqd550263_3.bin none\n"
                              "mode 1 set 0 refused -1 clear 0\n"));
}

TEST(CProgram, ReadsTheBoardIds)
{
    EXPECT_EQ(run({"ids"}), answer("65536 KT4752_P2\n"
                                   "65537 KT4752_P3\n"
                                   "65538 KT4752_P4\n"
                                   "65539 KT4752_P5\n"
                                   "65540 KT4752_R2_P1\n"
                                   "65541 KT4752_R2_P2\n"
                                   "65542 KT4752_XPIC\n"
                                   "0 KT4754_P1\n"
                                   "1 KT4754_P2\n"
                                   "2 KT4754_P3\n"
                                   "131072 KT4751_REV_A\n"
                                   "196608 VX4791_REV_A\n"
                                   "262144 RG4792_P2\n"
                                   "262145 RG4792_P3\n"
                                   "262146 RG4792_P4\n"
                                   "262147 RG4792_P5\n"
                                   "262148 RG4792_R2_P1\n"
                                   "262149 RG4792_R2_P2\n"
                                   "262150 RG4792_R2_P3\n"));
}

TEST(CProgram, HasNamesForTheValues)
{
    EXPECT_EQ(run({"names"}), answer("KT4851_4 XPIC BobCat2\n"
                                     "BCM85651 Wigeon Pci\n"
                                     "Ptp Rl5 Pt\n"
                                     "Watchdog EndOfList EndOfList\n"));
}

std::vector<std::string> channelsOf(const char* path)
{
    return linesOf(programAt(path).run().out);
}

TEST(StartOrder, InAProgramThatUsesOneFunction)
{
    EXPECT_THAT(channelsOf(BSP_TEST_START_ORDER_OF_ONE),
                UnorderedElementsAre("bsp.core: streams yes, tables yes"));
}

TEST(StartOrder, InAProgramThatUsesAllChannels)
{
    EXPECT_THAT(channelsOf(BSP_TEST_START_ORDER_OF_ALL),
                UnorderedElementsAre("bsp.core: streams yes, tables yes",
                                     "Bsp.WarmDatabase: streams yes, tables yes",
                                     "bsp.networking: streams yes, tables yes"));
}

} // namespace
