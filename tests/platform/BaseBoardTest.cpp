#include "BaseBoard.h"
#include "Board.h"
#include "FileDescriptor.h"
#include "Nodes.h"

#include <gmock/gmock.h>

#include <array>
#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace
{

using testing::Each;
using testing::ElementsAre;
using testsupport::Board;

const std::string Code("\x00\x01\x7F\x80\xFF\x05\x06\x07", 8);

class BaseBoard : public testing::Test
{
protected:
    BaseBoard() { buffer.fill(0xEE); }

    int read() { return e2prom_data_read(5, 1, buffer.data()); }

    Board board;
    std::array<uint8_t, 10> buffer{};
};

TEST_F(BaseBoard, ReadsTheFirstEightBytesOfTheEeprom)
{
    board.write("eeprom", Code + "more");
    EXPECT_EQ(read(), 0);
    EXPECT_THAT(buffer, ElementsAre(0x00, 0x01, 0x7F, 0x80, 0xFF, 0x05, 0x06, 0x07, 0xEE, 0xEE));
}

TEST_F(BaseBoard, NeedsNoMoreThanEightBytes)
{
    board.write("eeprom", Code);
    EXPECT_EQ(read(), 0);
}

TEST_F(BaseBoard, FollowsALinkToTheEeprom)
{
    board.write("at24", Code);
    ASSERT_EQ(::symlink("at24", board.file("eeprom").c_str()), 0);
    EXPECT_EQ(read(), 0);
    EXPECT_EQ(buffer[4], 0xFF);
}

TEST_F(BaseBoard, ReadsAnewEachTime)
{
    board.write("eeprom", Code);
    EXPECT_EQ(read(), 0);
    board.write("eeprom", "ABCDEFGH");
    EXPECT_EQ(read(), 0);
    EXPECT_EQ(buffer[0], 'A');
}

TEST_F(BaseBoard, ReportsTooFewBytesAsAnInputError)
{
    for (const char* contents : {"", "1234567"}) {
        board.write("eeprom", contents);
        EXPECT_EQ(read(), EIO) << contents;
    }
    EXPECT_THAT(buffer, Each(0xEE));
}

TEST_F(BaseBoard, ReportsWhyTheEepromCannotBeRead)
{
    EXPECT_EQ(read(), ENOENT);
    ASSERT_EQ(::symlink("eeprom", board.file("eeprom").c_str()), 0);
    EXPECT_EQ(read(), ELOOP);
    ASSERT_EQ(::unlink(board.file("eeprom").c_str()), 0);
    std::filesystem::create_directory(board.file("eeprom"));
    EXPECT_EQ(read(), EISDIR);
    EXPECT_THAT(buffer, Each(0xEE));
}

TEST_F(BaseBoard, WaitsForNoPipe)
{
    testsupport::makeNode(S_IFIFO, board.file("eeprom"));
    EXPECT_EQ(read(), ENODEV);
    const syscalls::FileDescriptor writer(::open(board.file("eeprom").c_str(), O_RDWR | O_CLOEXEC));
    ASSERT_TRUE(writer.isOpen());
    EXPECT_EQ(read(), ENODEV);
    EXPECT_THAT(buffer, Each(0xEE));
}

TEST_F(BaseBoard, WaitsForNoTerminal)
{
    const testsupport::Terminal terminal;
    ASSERT_NE(terminal.path(), "");
    testsupport::makeLink(terminal.path(), board.file("eeprom"));
    EXPECT_EQ(read(), ENODEV);
    EXPECT_THAT(buffer, Each(0xEE));
}

TEST_F(BaseBoard, TakesNoDeviceOrSocketAsAnEeprom)
{
    testsupport::makeLink("/dev/zero", board.file("eeprom"));
    EXPECT_EQ(read(), ENODEV);
    ASSERT_EQ(::unlink(board.file("eeprom").c_str()), 0);
    testsupport::makeNode(S_IFSOCK, board.file("eeprom"));
    EXPECT_EQ(read(), ENXIO);
    EXPECT_THAT(buffer, Each(0xEE));
}

TEST_F(BaseBoard, ReportsABoardDirectoryThatIsNone)
{
    board.write("file", "");
    ::setenv("BSP_BOARD_DIR", board.file("file").c_str(), 1);
    EXPECT_EQ(read(), ENOTDIR);
    ::setenv("BSP_BOARD_DIR", board.file("missing").c_str(), 1);
    EXPECT_EQ(read(), ENOENT);
}

TEST_F(BaseBoard, KnowsOneDeviceAndOneArea)
{
    board.write("eeprom", Code);
    EXPECT_EQ(e2prom_data_read(4, 1, buffer.data()), EINVAL);
    EXPECT_EQ(e2prom_data_read(5, 0, buffer.data()), EINVAL);
    EXPECT_EQ(e2prom_data_read(5, 1, nullptr), EINVAL);
    EXPECT_THAT(buffer, Each(0xEE));
}

TEST_F(BaseBoard, LeavesNoDescriptorOpen)
{
    board.write("eeprom", Code);
    const int before = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ::close(before);
    EXPECT_EQ(read(), 0);
    board.write("eeprom", "short");
    EXPECT_EQ(read(), EIO);
    const int after = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ::close(after);
    EXPECT_EQ(after, before);
}

} // namespace
