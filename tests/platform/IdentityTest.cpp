#include "BaseBoard.h"
#include "Board.h"
#include "FileDescriptor.h"
#include "Nodes.h"
#include "NxuConfig.h"
#include "NxuHwVariant.h"

#include <gmock/gmock.h>

#include <array>
#include <cerrno>
#include <set>

#include <fcntl.h>
#include <unistd.h>

namespace
{

using namespace testing;
using os::bsp::hwVariants;
using os::bsp::NxuHwCode;
using os::bsp::NxuHwVariant;
using testsupport::Board;

const std::string Code("\x00\x01\x7F\x80\xFF\x05\x06\x07", 8);

class BaseBoard : public Test
{
protected:
    BaseBoard() { buffer.fill(0xEE); }

    int read() { return e2prom_data_read(5, 1, buffer.data()); }

    /** Reads what is there in vain, and takes it away. */
    void expectFailure(int error)
    {
        EXPECT_EQ(read(), error);
        EXPECT_THAT(buffer, Each(0xEE));
        std::filesystem::remove(board.file("eeprom"));
    }

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
        SCOPED_TRACE(contents);
        board.write("eeprom", contents);
        expectFailure(EIO);
    }
}

TEST_F(BaseBoard, ReportsWhyTheEepromCannotBeRead)
{
    expectFailure(ENOENT);
    testsupport::makeLink("eeprom", board.file("eeprom"));
    expectFailure(ELOOP);
    std::filesystem::create_directory(board.file("eeprom"));
    expectFailure(EISDIR);
}

TEST_F(BaseBoard, WaitsForNoPipe)
{
    testsupport::makeNode(S_IFIFO, board.file("eeprom"));
    EXPECT_EQ(read(), ENODEV);
    const syscalls::FileDescriptor writer(::open(board.file("eeprom").c_str(), O_RDWR | O_CLOEXEC));
    ASSERT_TRUE(writer.isOpen());
    expectFailure(ENODEV);
}

TEST_F(BaseBoard, WaitsForNoTerminal)
{
    const testsupport::Terminal terminal;
    ASSERT_NE(terminal.path(), "");
    testsupport::makeLink(terminal.path(), board.file("eeprom"));
    expectFailure(ENODEV);
}

TEST_F(BaseBoard, TakesNoDeviceOrSocketAsAnEeprom)
{
    testsupport::makeLink("/dev/zero", board.file("eeprom"));
    expectFailure(ENODEV);
    testsupport::makeNode(S_IFSOCK, board.file("eeprom"));
    expectFailure(ENXIO);
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
    const std::size_t descriptors = testsupport::openDescriptors();
    EXPECT_EQ(read(), 0);
    board.write("eeprom", "short");
    EXPECT_EQ(read(), EIO);
    EXPECT_EQ(testsupport::openDescriptors(), descriptors);
}

constexpr int Platform = 1;
constexpr int Nxu4 = 0;
constexpr int Nxu5 = 1;

// Made before main, as the static objects of other modules are.
const std::size_t variantsAtStart = hwVariants.size();
const std::string keyAtStart = os::bsp::key::FpgaVariant;

/** All values of one word of the hardware codes. */
std::set<int> valuesOf(int word)
{
    std::set<int> values;
    for (const NxuHwVariant& variant : hwVariants) {
        values.insert(variant.code.word[word]);
    }
    return values;
}

/** The products with boards of one platform kind. */
std::set<int> productsOn(int platform)
{
    std::set<int> products;
    for (const NxuHwVariant& variant : hwVariants) {
        if (variant.code.word[Platform] == platform) {
            products.insert(variant.productCode);
        }
    }
    return products;
}

TEST(HwVariants, HaveEnoughRows)
{
    EXPECT_GE(hwVariants.size(), 18U);
}

TEST(HwVariants, AreThereBeforeTheStaticObjectsOfOthers)
{
    EXPECT_EQ(variantsAtStart, hwVariants.size());
    EXPECT_EQ(keyAtStart, os::bsp::key::FpgaVariant);
}

TEST(HwVariants, HaveEveryProduct)
{
    std::set<int> products;
    for (const NxuHwVariant& variant : hwVariants) {
        products.insert(variant.productCode);
    }
    EXPECT_THAT(products, ElementsAre(1, 2, 3, 4, 5, 6, 7, 9, 10, 11, 12, 13, 14));
}

TEST(HwVariants, HaveOnlyKnownRevisions)
{
    for (const NxuHwVariant& variant : hwVariants) {
        EXPECT_GE(variant.hwRevision, 0);
        EXPECT_LE(variant.hwRevision, 6);
    }
}

TEST(HwVariants, HaveEveryValueThatTheQueriesKnow)
{
    EXPECT_THAT(valuesOf(1), ElementsAre(0, 1));
    EXPECT_THAT(valuesOf(2), ElementsAre(0, 1, 2));
    EXPECT_THAT(valuesOf(3), ElementsAre(0, 3, 4, 5, 6, 7, 8));
    EXPECT_THAT(valuesOf(5), ElementsAre(0, 2, 4));
}

TEST(HwVariants, HaveProductsOfBothPlatforms)
{
    EXPECT_THAT(productsOn(Nxu4), IsSupersetOf({1}));
    EXPECT_GE(productsOn(Nxu4).size(), 3U);
    EXPECT_THAT(productsOn(Nxu5), IsSupersetOf({11}));
    for (const int product : productsOn(Nxu4)) {
        EXPECT_EQ(productsOn(Nxu5).count(product), 0U) << "product " << product;
    }
}

TEST(HwVariants, HaveCodesOfBytesNoTwoAlike)
{
    std::set<std::vector<int>> codes;
    for (const NxuHwVariant& variant : hwVariants) {
        const std::vector<int> code(std::begin(variant.code.word), std::end(variant.code.word));
        for (const int word : code) {
            EXPECT_GE(word, 0);
            EXPECT_LE(word, 255);
        }
        EXPECT_TRUE(codes.insert(code).second) << "product " << variant.productCode;
    }
}

TEST(HwVariants, MatchTheirOwnCodeAlone)
{
    for (const NxuHwVariant& variant : hwVariants) {
        for (const NxuHwVariant& other : hwVariants) {
            EXPECT_EQ(variant == other.code, &variant == &other);
        }
    }
}

TEST(HwVariants, MatchByAllEightWords)
{
    const NxuHwVariant& variant = hwVariants[3];
    for (int i = 0; i < 8; ++i) {
        NxuHwCode code = variant.code;
        code.word[i] += 256;
        EXPECT_FALSE(variant == code) << "word " << i;
    }
}

} // namespace
