#include "Bsp.h"
#include "Files.h"
#include "RecordingTrace.h"
#include "WarmBoard.h"
#include "WarmCalls.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <ostream>
#include <stdexcept>

#include <unistd.h>

namespace
{

using os::bsp::getResetType;
using os::bsp::ResetType;
using os::bsp::resetTypeToString;
using namespace testing;
using namespace warmboard;

class Register : public TestWithParam<std::uint32_t>
{};

TEST_P(Register, IsTheAnswerAsItStandsThere)
{
    useNxu4(GetParam());
    EXPECT_EQ(static_cast<std::uint32_t>(getResetType()), GetParam());
    EXPECT_EQ(fakedevices::control().name, "top.sys_ctrl0");
    EXPECT_EQ(fakedevices::control().offset, 0U);
    EXPECT_EQ(fakedevices::control().mutexType, 0);
    EXPECT_EQ(fakedevices::control().destroyed, 1);
    EXPECT_THAT(recordingtrace::takeLines(5), IsEmpty());
    EXPECT_THAT(systemcalls::take(), IsEmpty()) << "the marker is not looked for";
}

TEST_P(Register, IsTheAnswerToCAsWell)
{
    useNxu4(GetParam());
    EXPECT_EQ(static_cast<std::uint32_t>(Bsp_getResetType()), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Words, Register,
                         Values(0U, 1U, 2U, 3U, 4U, 7U, 0x100U, 0x80000000U, 0xFFFFFFFFU));

class KnownCause : public TestWithParam<std::uint32_t>
{};

TEST_P(KnownCause, IsReadOnce)
{
    useNxu4(GetParam());
    const ResetType first = getResetType();
    fakedevices::control().word = 2 - GetParam();
    EXPECT_EQ(getResetType(), first);
    EXPECT_EQ(fakedevices::control().created, 1);
    EXPECT_EQ(fakedevices::control().reads, 1);
}

INSTANTIATE_TEST_SUITE_P(Causes, KnownCause, Values(0U, 1U, 2U));

TEST(UnknownCause, IsReadAgainUntilItIsKnown)
{
    useNxu4(Unknown);
    EXPECT_EQ(getResetType(), ResetType::Unknown);
    EXPECT_EQ(getResetType(), ResetType::Unknown);
    EXPECT_EQ(fakedevices::control().reads, 2);
    fakedevices::control().word = Watchdog;
    EXPECT_EQ(getResetType(), ResetType::Watchdog);
    fakedevices::control().word = Unknown;
    EXPECT_EQ(getResetType(), ResetType::Watchdog);
    EXPECT_EQ(fakedevices::control().reads, 3);
    EXPECT_EQ(fakedevices::control().destroyed, 3);
}

TEST(UnknownCause, ForAMissingDevice)
{
    useNxu4(Cold);
    fakedevices::control().kind = fakedevices::Control::Missing;
    EXPECT_EQ(getResetType(), ResetType::Unknown);
    EXPECT_THAT(recordingtrace::takeLines(5), IsEmpty());
}

TEST(UnknownCause, ForADeviceOfAnotherType)
{
    useNxu4(Cold);
    fakedevices::control().kind = fakedevices::Control::OtherType;
    EXPECT_EQ(getResetType(), ResetType::Unknown);
    EXPECT_EQ(fakedevices::control().reads, 0);
    EXPECT_EQ(fakedevices::control().destroyed, 1);
    fakedevices::control().kind = fakedevices::Control::Registers;
    EXPECT_EQ(getResetType(), ResetType::Cold);
}

TEST(UnknownCause, ForARegisterThatCannotBeRead)
{
    useNxu4(Cold);
    fakedevices::control().readFails = true;
    EXPECT_EQ(getResetType(), ResetType::Unknown);
    fakedevices::control().readFails = false;
    EXPECT_EQ(getResetType(), ResetType::Cold);
}

TEST(RegisterPlatform, DecidesWhateverTheProduct)
{
    use(Nxu4Word, Kt4851_4Product);
    fakedevices::control().word = Cold;
    EXPECT_EQ(getResetType(), ResetType::Cold) << "though there is no marker";
    EXPECT_THAT(systemcalls::take(), IsEmpty()) << "the marker is not looked for";
}

TEST(Exceptions, OfTheDeviceLibraryPass)
{
    useNxu4(Warm);
    fakedevices::control().onCreate = [] { throw std::runtime_error("no bus"); };
    EXPECT_THROW(getResetType(), std::runtime_error);
    fakedevices::control().onCreate = [] { throw 5; };
    EXPECT_THROW(getResetType(), int);
    fakedevices::control().onCreate = {};
    EXPECT_EQ(getResetType(), ResetType::Warm);
}

struct Board
{
    int platformWord;
    int productCode;
    bool marked;
    ResetType type;

    friend std::ostream& operator<<(std::ostream& stream, const Board& board)
    {
        return stream << "platform " << board.platformWord << " product " << board.productCode
                      << (board.marked ? " marked" : "");
    }
};

class OtherPlatform : public TestWithParam<Board>
{};

TEST_P(OtherPlatform, KnowsByProductAndMarker)
{
    use(GetParam().platformWord, GetParam().productCode);
    if (GetParam().marked) {
        testsupport::writeFile("/tmp/restart_cold", "whatever it holds");
    }
    EXPECT_EQ(getResetType(), GetParam().type);
    EXPECT_EQ(fakedevices::control().created, 0);
    recordingtrace::takeLines();
}

// Product code 11 is KT4851_4, product number 14; product code 14 is another product.
INSTANTIATE_TEST_SUITE_P(
    Boards, OtherPlatform,
    Values(Board{1, 11, false, ResetType::Warm}, Board{1, 11, true, ResetType::Cold},
           Board{1, 14, false, ResetType::Cold}, Board{1, 14, true, ResetType::Cold},
           Board{1, 1, false, ResetType::Cold}, Board{1, 0, false, ResetType::Cold},
           Board{2, 11, false, ResetType::Warm}, Board{99, 11, true, ResetType::Cold},
           Board{99, 5, false, ResetType::Cold}));

TEST(Marker, IsOnlyLookedForOnKt4851_4)
{
    use(Nxu5Word, Nxu4aProduct);
    getResetType();
    EXPECT_THAT(systemcalls::take(), IsEmpty());
}

TEST(Marker, IsLookedForOnce)
{
    use(Nxu5Word, Kt4851_4Product);
    EXPECT_EQ(getResetType(), ResetType::Warm);
    testsupport::writeFile("/tmp/restart_cold", "");
    EXPECT_EQ(getResetType(), ResetType::Warm);
    EXPECT_THAT(systemcalls::take(),
                ElementsAre("access /tmp/restart_cold " + std::to_string(F_OK)));
}

TEST(Marker, ThatCannotBeReachedCountsAsAbsent)
{
    use(Nxu5Word, Kt4851_4Product);
    testsupport::writeFile("/tmp/restart_cold", "");
    systemcalls::queue("access", {{-1, EACCES}});
    EXPECT_EQ(getResetType(), ResetType::Warm);
}

TEST(Marker, ThatIsADanglingLinkCountsAsAbsent)
{
    use(Nxu5Word, Kt4851_4Product);
    ASSERT_EQ(::symlink("/tmp/nowhere", "/tmp/restart_cold"), 0);
    EXPECT_EQ(getResetType(), ResetType::Warm);
}

TEST(ResetTypeText, OfEveryValue)
{
    EXPECT_EQ(resetTypeToString(ResetType::Cold), "Cold");
    EXPECT_EQ(resetTypeToString(ResetType::Warm), "Warm");
    EXPECT_EQ(resetTypeToString(ResetType::Watchdog), "Watchdog");
    EXPECT_EQ(resetTypeToString(ResetType::Unknown), "Unknown");
    for (const int value : {4, 7, -1}) {
        EXPECT_EQ(resetTypeToString(static_cast<ResetType>(value)), "EndOfList") << value;
    }
}

} // namespace
