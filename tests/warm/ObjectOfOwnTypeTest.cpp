#include "RecordingTrace.h"
#include "WarmBoard.h"
#include "WarmDatabase.h"
#include "warm/WarmObject.h"

#include <gmock/gmock.h>

#include <cstring>

namespace
{

using os::bsp::WarmObject;
using testing::ElementsAre;

struct Alarms
{
    std::int32_t count;
    char last[12];
};

HvxTrace alarmTrace("test.alarms", trace::Notice);

WarmObject<Alarms>* obtainAlarms()
{
    static constexpr HvxTraceHeader site{__FILE__, __LINE__, __func__};
    return WarmObject<Alarms>::obtain({"ALARMS", alarmTrace, site}, {1, "none"},
                                      [](trace::MessageText& text, const Alarms& found) {
                                          text << found.count << " alarms, " << found.last;
                                      });
}

/** Messages of the object's own channel. */
std::vector<std::string> alarmLines()
{
    return recordingtrace::takeLinesOf("test.alarms");
}

const std::string alarmsRetrieved =
    "test.alarms 5 obtainAlarms(): The ALARMS object was successfully "
    "retrieved from the warm database";

TEST(ObjectOfOwnType, BeginsWithTheInitialValue)
{
    warmboard::useNxu4(warmboard::Cold);
    WarmObject<Alarms>* const alarms = obtainAlarms();
    ASSERT_NE(alarms, nullptr);
    EXPECT_THAT(alarmLines(),
                ElementsAre(alarmsRetrieved, "test.alarms 5 obtainAlarms(): The ALARMS object was "
                                             "created, initializing the object contents"));
    EXPECT_EQ(alarms->value.count, 1);
    EXPECT_STREQ(alarms->value.last, "none");
    const auto guard = alarms->lock();
    EXPECT_NE(::pthread_mutex_trylock(&alarms->mutex), 0);
}

TEST(ObjectOfOwnType, IsOneForAllWhoObtainIt)
{
    warmboard::useNxu4(warmboard::Cold);
    WarmObject<Alarms>* const alarms = obtainAlarms();
    ASSERT_NE(alarms, nullptr);
    alarms->value = {7, "fan"};
    alarmLines();
    EXPECT_EQ(obtainAlarms(), alarms);
    EXPECT_THAT(alarmLines(),
                ElementsAre(alarmsRetrieved, "test.alarms 5 obtainAlarms(): 7 alarms, fan"));
    EXPECT_EQ(alarms->value.count, 7);

    const std::string area = warmboard::area();
    EXPECT_STREQ(area.c_str(), "ALARMS");
    EXPECT_EQ(std::memcmp(area.data() + 16, &alarms->value, sizeof(Alarms)), 0);
}

TEST(ObjectOfOwnType, IsNotThereWhenTheStoreIsFull)
{
    warmboard::useNxu4(warmboard::Warm);
    warmboard::fillArea(warmboard::fullArea());
    EXPECT_EQ(obtainAlarms(), nullptr);
    EXPECT_THAT(recordingtrace::takeLines(1),
                ElementsAre("Bsp.WarmDatabase 1 createObject(): Error: DTCM is out of space.",
                            "test.alarms 1 obtainAlarms(): Error: Could not get the ALARMS object "
                            "from the warm database"));
}

} // namespace
