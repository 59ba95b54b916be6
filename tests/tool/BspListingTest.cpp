#include "BspTool.h"

#include <gtest/gtest.h>

#include <array>
#include <sstream>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

using bsptool::bsp;
using testsupport::Outcome;
using testsupport::Program;

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
    std::string("bsp getSlotId            Get the slot position in the rack. ") +
        "-1 indicates not yet set, 0 indicates not applicable",
    "bsp getDspType           Get DSP variant (in text format: BCM85110, BCM85655 etc.).",
    "bsp getRadiolinkMode     Get radio-link mode (in text format: Rl4 or Rl5).",
    "bsp setRadiolinkMode     Set radio-link mode (in text format: Rl4 or Rl5).",
    "bsp clearRadiolinkMode   Clear specific radio-link mode (meaning returning to default mode).",
    std::string("bsp getTrafClientMode    Get TrafClientMode (in text format: Rlps or Lads). ") +
        "DEPRECATED: Returns value based on RadiolinkMode",
    "bsp setTrafClientMode    DEPRECATED: Does nothing",
    "bsp clearTrafClientMode  DEPRECATED: Does nothing",
    "bsp getTrafFpgaType      Get FPGA variant (in text format: Bittern, Jackdaw, Osprey etc.).",
    "bsp getKernelRState      Get kernel R-State (in text format: R1A01 etc.).",
    "bsp getUbootProductInfo  Get U-boot product number and r-state.",
};

TEST(BspListing, HasTheBoardsFunctionsInOrder)
{
    const Outcome outcome = bsp({}).run();
    EXPECT_EQ(outcome.err, "Usage: bsp <function> [arguments]\n");
    EXPECT_EQ(linesOf(outcome.out), listing);
    EXPECT_EQ(outcome.out.back(), '\n');
    EXPECT_EQ(outcome.status, 1);
}

TEST(BspListing, FollowsTheUsage)
{
    Program program = bsp({});
    program.merged = true;
    std::vector<std::string> expected = listing;
    expected.insert(expected.begin(), "Usage: bsp <function> [arguments]");
    EXPECT_EQ(linesOf(program.run().out), expected);
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
    EXPECT_EQ(linesOf(text), listing);
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

} // namespace
