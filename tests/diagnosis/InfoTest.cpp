#include "DiagTest.h"

namespace
{

namespace fs = std::filesystem;
using testing::HasSubstr;

class Info : public DiagTest
{
protected:
    std::string info(Words words = {}) const
    {
        words.insert(words.begin(), "info");
        return normal(testsupport::outputOf(diag(std::move(words))));
    }
};

TEST_F(Info, TellsAllThatTheLayerAnswers)
{
    write("settings", "RadiolinkMode=Rl5\n");
    const StoreUser user(board(), {"slot", "5", "object", "LINK"});
    EXPECT_EQ(info(), "Version              " BSP_TEST_VERSION "\n"
                      "Hardware code        4100000001000100\n"
                      "Variant              0\n"
                      "Product              NXU4A (5)\n"
                      "Revision             R1_P2 (0)\n"
                      "Board ID             Unknown board revision (327680)\n"
                      "Platform             Nxu4 (1)\n"
                      "DSP                  BCM85650 (4)\n"
                      "Traffic FPGA         Fulmar (6), fwq402817_2/R9AC/fwq402817_2.bin\n"
                      "Traffic backplane    Ptp (1)\n"
                      "Control backplane    Pci (1)\n"
                      "Switch               None (0)\n"
                      "Channels             2\n"
                      "Radio links          2\n"
                      "Radio-link mode      Rl5 (1)\n"
                      "Traffic client mode  Lads\n"
                      "Reset type           Warm (1)\n"
                      "Reset cause          Warm (1)\n"
                      "Cold marker          absent\n"
                      "Settings             RadiolinkMode = Rl5\n"
                      "LED yellow           steady_off\n"
                      "LED red              steady_off\n"
                      "LED green            steady_off\n"
                      "Slot id              5\n"
                      "Warm area            2 of 32 blocks used\n"
                      "Block 1              SLOT\n"
                      "Block 2              LINK\n");
}

TEST_F(Info, SaysWhyItDoesNotKnow)
{
    for (const char* const name : {"eeprom", "top.dtcm0", "top.sys_ctrl0"}) {
        fs::remove(boardFile(name));
    }
    write("settings", "damaged");
    fs::remove_all("/sys/class/leds/red");
    const std::string text = info();
    for (const std::string line :
         {"Hardware code        unknown: the EEPROM cannot be read: the library answered 2\n",
          "Variant              14 (the default, as the code is not known)\n",
          "Radio-link mode      unknown: cannot read the configuration store BOARD/settings: line "
          "1: not of the form key=value\n",
          "Reset cause          unknown: no registers at BOARD/top.sys_ctrl0\n",
          "LED red              unknown: cannot read /sys/class/leds/red/korvanta_state: No such "
          "file or directory\n",
          "Slot id              unknown: programs are told -1, of a private area: cannot open "
          "BOARD/top.dtcm0: No such file or directory\n",
          "Warm area            unknown: cannot open BOARD/top.dtcm0: No such file or directory\n"})
    {
        EXPECT_THAT(text, HasSubstr(line));
    }
    write("eeprom", "abcdefgh");
    EXPECT_THAT(info(),
                HasSubstr("Variant              0 (the fallback, as no variant has the code)\n"));
}

TEST_F(Info, NeitherWaitsNorCreatesAnything)
{
    EXPECT_THAT(info(), HasSubstr("Slot id              -1\n"));
    EXPECT_TRUE(fs::is_empty("/dev/shm"));
    const StoreUser holder(board(), {"slot", "7", "lockslot", "hold"});
    EXPECT_THAT(info(), HasSubstr("Slot id              7\n"));
}

TEST_F(Info, TellsWhatImagesHold)
{
    const std::string data = BSP_TEST_DATA_DIR;
    const std::string text = info(
        {"--kernel", data + "/zImage-2.6.34.R1A01", "--boot-loader", data + "/u-boot-R2B.bin"});
    EXPECT_THAT(text, testing::EndsWith("Kernel               R1A01\n"
                                        "Boot loader          PN-4402/17 R2B\n"));
    EXPECT_THAT(info({"--kernel", "/nowhere", "--boot-loader", "/nowhere"}),
                testing::EndsWith("Kernel               unknown: no kernel version in '/nowhere'\n"
                                  "Boot loader          unknown: cannot read '/nowhere'\n"));
}

TEST_F(Info, IsTheSameForProgramsFromTheBoardAndFromTheDesk)
{
    fs::create_directory(boardFile("shm"));
    fs::create_directory(boardFile("tmp"));
    fs::copy("/sys/class/leds", boardFile("leds"), fs::copy_options::recursive);
    putBlock(1, "SLOT", word(9));
    const std::string document = info({"--json"});
    EXPECT_THAT(document, HasSubstr("\"schema\": \"bsp-diag/1\",\n  \"kind\": \"board\""));
    EXPECT_THAT(document, HasSubstr("\"slotId\": 9"));
    EXPECT_EQ(normal(testsupport::outputOf(tool("bsp-board", {"show", "--json", board()}))),
              document);
}

TEST_F(Info, TellsItsVersion)
{
    EXPECT_EQ(diag({"--version"}).run().out, "bsp-diag " BSP_TEST_VERSION "\n");
}

TEST_F(Info, RefusesWordsThatMakeNoSense)
{
    EXPECT_EQ(diag({}).run(),
              testsupport::refusal("bsp-diag: a command is missing\nTry 'bsp-diag --help'.\n", 2));
}

} // namespace
