/**
 * @file
 * @brief What is done once per process: by many threads at once, and when it cannot be done.
 */
#include "Bsp.h"
#include "FakeBoard.h"
#include "ManyThreads.h"
#include "Messages.h"
#include "RecordingTrace.h"
#include "SystemCalls.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <chrono>
#include <stdexcept>
#include <system_error>
#include <thread>

#include <pthread.h>

namespace
{

using namespace fakeboard;
using recordingtrace::takeLines;
using testing::Contains;

/** Makes the layer's calls of pthread_once fail. */
void refuseOnce()
{
    systemcalls::hooks().pthread_once = [](pthread_once_t* /*once*/, void (* /*function*/)()) {
        return ENOMEM;
    };
}

constexpr std::size_t Threads = 16;

void dawdle()
{
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
}

const std::vector<int (*)()> queries = {
    Bsp_getHwRevision,
    Bsp_getProductId,
    Bsp_getBoardId,
    Bsp_getDspType,
    Bsp_getTrafFpgaType,
    Bsp_getPlatformType,
    Bsp_getTrafficBackplane,
    Bsp_getControlBackplane,
    Bsp_getNumberOfRlt,
    [] { return static_cast<int>(Bsp_getNumberOfChannels()); },
    [] { return static_cast<int>(Bsp_getNxuHwVariant()->productCode); },
    [] { return static_cast<int>(Bsp_getBoardIdText()[0]); },
    [] { return static_cast<int>(Bsp_getLatestBoardIdText()[0]); },
};

TEST(Once, TheEepromIsReadByAllThreadsTogether)
{
    fakeboard::variant(1).code = {{0, 0, 0, 0, 0, 0, 0, 1}};
    fakeboard::variant(1).productCode = 4;
    fakeboard::setCode(fakeboard::variant(1).code);
    eeprom().onRead = dawdle;
    std::atomic<int> wrong{0};
    testsupport::inManyThreads(Threads, [&wrong](std::size_t number) {
        const std::size_t first = number % queries.size();
        queries[first]();
        wrong += Bsp_getHwRevision() == 11 ? 0 : 1;
        wrong += Bsp_getProductId() == 10 ? 0 : 1;
        wrong += Bsp_getPlatformType() == 1 ? 0 : 1;
        wrong += Bsp_getDspType() == 4 ? 0 : 1;
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(eeprom().reads, 1);
    EXPECT_THAT(takeLines(5), testing::IsEmpty());
}

TEST(Once, AFailureIsReportedForAllThreadsTogether)
{
    eeprom().result = 3;
    eeprom().onRead = dawdle;
    fakeboard::variant(0).productCode = 1;
    fakeboard::setEquality([](const auto& /*row*/, const auto& /*code*/) { return false; });
    std::atomic<int> wrong{0};
    testsupport::inManyThreads(Threads, [&wrong](std::size_t number) {
        if (number % 2 == 0) {
            wrong += Bsp_getProductId() == 5 ? 0 : 1;
        }
        wrong += Bsp_getHwRevision() == 10 ? 0 : 1;
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(eeprom().reads, 1);
    EXPECT_THAT(takeLines(), testing::ElementsAre(readFailed(3), invalidVariant));
}

TEST(Once, TheRadiolinkModeIsReadByAllThreadsTogether)
{
    store().values[os::bsp::key::RadiolinkMode] = os::bsp::value::radiolinkMode::Rl5;
    store().onUse = dawdle;
    std::atomic<int> wrong{0};
    testsupport::inManyThreads(Threads, [&wrong](std::size_t /*number*/) {
        wrong += Bsp_getRadiolinkMode() == 1 ? 0 : 1;
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(store().made, 1);
}

TEST(Once, TheModeIsSetAndClearedByThreadsWithoutAnyOrder)
{
    testsupport::inManyThreads(Threads, [](std::size_t number) {
        Bsp_setRadiolinkMode(static_cast<int>(number % 2));
        Bsp_clearRadiolinkMode();
    });
    EXPECT_EQ(store().calls.size(), 32U);
    EXPECT_EQ(store().made, 32);
}

class Query : public testing::TestWithParam<std::size_t>
{
protected:
    static int ask() { return queries[GetParam()](); }
};

TEST_P(Query, ReadsTheEepromOnce)
{
    eeprom().result = 2;
    ask();
    ask();
    EXPECT_EQ(eeprom().reads, 1);
    EXPECT_THAT(takeLines(), Contains(readFailed(2)).Times(1));
}

TEST_P(Query, PassesAnExceptionOfTheRead)
{
    eeprom().onRead = [] { throw std::range_error("EEPROM"); };
    EXPECT_THROW(ask(), std::range_error);
    takeLines();
}

TEST_P(Query, ThrowsWhenTheThreadsLibraryRefuses)
{
    refuseOnce();
    EXPECT_THROW(ask(), std::system_error);
    systemcalls::hooks() = {};
    EXPECT_EQ(eeprom().reads, 0);
    takeLines();
}

INSTANTIATE_TEST_SUITE_P(All, Query, testing::Range(std::size_t{0}, queries.size()));

TEST(Once, TheRadiolinkModeThrowsWhenTheThreadsLibraryRefuses)
{
    refuseOnce();
    EXPECT_THROW(os::bsp::getRadiolinkMode(), std::system_error);
    EXPECT_THROW(Bsp_getRadiolinkMode(), std::system_error);
    systemcalls::hooks() = {};
    EXPECT_EQ(store().made, 0);
}

} // namespace
