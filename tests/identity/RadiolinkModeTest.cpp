#include "Bsp.h"
#include "FakeBoard.h"
#include "RecordingTrace.h"
#include "Sanitizers.h"

#include <gmock/gmock.h>

#include <climits>
#include <stdexcept>

namespace
{

using fakeboard::store;
using os::bsp::clearRadiolinkMode;
using os::bsp::getRadiolinkMode;
using os::bsp::RadiolinkMode;
using os::bsp::setRadiolinkMode;
using recordingtrace::takeLines;
using namespace testing;

const std::string& key = os::bsp::key::RadiolinkMode;
const std::string& rl4 = os::bsp::value::radiolinkMode::Rl4;
const std::string& rl5 = os::bsp::value::radiolinkMode::Rl5;

TEST(RadiolinkMode, IsRl4WhenNoneIsStored)
{
    EXPECT_EQ(getRadiolinkMode(), RadiolinkMode::Rl4);
    EXPECT_EQ(Bsp_getRadiolinkMode(), 0);
    EXPECT_THAT(takeLines(), IsEmpty());
}

/** A stored text, and the mode that it stands for. */
class StoredMode : public TestWithParam<std::pair<std::string, RadiolinkMode>>
{};

TEST_P(StoredMode, IsComparedByLengthAndBytesAndElseRl4)
{
    store().values[key] = GetParam().first;
    EXPECT_EQ(getRadiolinkMode(), GetParam().second);
    EXPECT_EQ(Bsp_getRadiolinkMode(), static_cast<int>(GetParam().second));
    EXPECT_THAT(takeLines(), IsEmpty());
}

// The last begins with what both modes have before their NUL.
INSTANTIATE_TEST_SUITE_P(All, StoredMode,
                         Values(std::pair{rl4, RadiolinkMode::Rl4},
                                std::pair{rl5, RadiolinkMode::Rl5},
                                std::pair{std::string("Rl6"), RadiolinkMode::Rl4},
                                std::pair{rl5 + '\0', RadiolinkMode::Rl4},
                                std::pair{std::string("mode"), RadiolinkMode::Rl4}),
                         [](const auto& chosen) { return "Text" + std::to_string(chosen.index); });

TEST(RadiolinkMode, IsReadOncePerProcess)
{
    EXPECT_EQ(getRadiolinkMode(), RadiolinkMode::Rl4);
    store().values[key] = rl5;
    EXPECT_EQ(getRadiolinkMode(), RadiolinkMode::Rl4);
    EXPECT_EQ(Bsp_getRadiolinkMode(), 0);
    EXPECT_EQ(store().made, 1);
    EXPECT_EQ(store().destroyed, 1);
}

TEST(RadiolinkMode, StaysWhenItIsSet)
{
    getRadiolinkMode();
    EXPECT_TRUE(setRadiolinkMode(RadiolinkMode::Rl5));
    EXPECT_EQ(getRadiolinkMode(), RadiolinkMode::Rl4);
}

TEST(RadiolinkMode, StaysWhenItIsCleared)
{
    store().values[key] = rl5;
    getRadiolinkMode();
    EXPECT_TRUE(clearRadiolinkMode());
    EXPECT_EQ(getRadiolinkMode(), RadiolinkMode::Rl5);
}

TEST(RadiolinkMode, IsReadAtTheFirstQuestionNotBefore)
{
    EXPECT_TRUE(setRadiolinkMode(RadiolinkMode::Rl5));
    EXPECT_EQ(getRadiolinkMode(), RadiolinkMode::Rl5);
}

TEST(RadiolinkMode, PassesTheStoresExceptions)
{
    store().onUse = [] { throw std::range_error("store"); };
    EXPECT_THROW(getRadiolinkMode(), std::range_error);
    EXPECT_EQ(store().destroyed, 1);
}

TEST(RadiolinkMode, PassesTheStoresExceptionsToC)
{
    store().onUse = [] { throw std::range_error("store"); };
    EXPECT_THROW(Bsp_setRadiolinkMode(1), std::range_error);
    EXPECT_THROW(Bsp_clearRadiolinkMode(), std::range_error);
    EXPECT_THROW(Bsp_getRadiolinkMode(), std::range_error);
}

TEST(RadiolinkMode, IsAskedForAgainAfterAnException)
{
    if (testsupport::isSanitized("thread")) {
        GTEST_SKIP() << "the sanitizer's pthread_once never ends after an exception";
    }
    store().onUse = [] { throw std::range_error("store"); };
    EXPECT_THROW(getRadiolinkMode(), std::range_error);
    store().onUse = {};
    store().values[key] = rl5;
    EXPECT_EQ(getRadiolinkMode(), RadiolinkMode::Rl5);
}

TEST(SetRadiolinkMode, StoresTheMode)
{
    EXPECT_TRUE(setRadiolinkMode(RadiolinkMode::Rl5));
    EXPECT_EQ(store().values.at(key), rl5);
    EXPECT_TRUE(setRadiolinkMode(RadiolinkMode::Rl4));
    EXPECT_EQ(store().values.at(key), rl4);
    EXPECT_THAT(store().calls, ElementsAre("set " + key + ' ' + rl5, "set " + key + ' ' + rl4));
    EXPECT_EQ(store().made, 2);
    EXPECT_EQ(store().destroyed, 2);
    EXPECT_THAT(takeLines(), IsEmpty());
}

TEST(SetRadiolinkMode, StoresTheModeFromC)
{
    EXPECT_EQ(Bsp_setRadiolinkMode(1), 0);
    EXPECT_EQ(store().values.at(key), rl5);
    EXPECT_EQ(Bsp_setRadiolinkMode(0), 0);
    EXPECT_EQ(store().values.at(key), rl4);
}

TEST(SetRadiolinkMode, FailsWhenTheStoreDoes)
{
    store().refuses = true;
    EXPECT_FALSE(setRadiolinkMode(RadiolinkMode::Rl4));
    EXPECT_EQ(Bsp_setRadiolinkMode(1), -1);
    EXPECT_THAT(takeLines(), IsEmpty());
}

TEST(SetRadiolinkMode, RefusesWhatIsNoMode)
{
    for (const int mode : {-1, 2, 5, INT_MIN, INT_MAX}) {
        EXPECT_FALSE(setRadiolinkMode(static_cast<RadiolinkMode>(mode)));
        EXPECT_EQ(Bsp_setRadiolinkMode(mode), -1);
        EXPECT_THAT(
            takeLines(),
            ElementsAre("bsp.core 1 setRadiolinkMode(): Unsupported radio-link mode: EndOfList",
                        "bsp.core 1 setRadiolinkMode(): Unsupported radio-link mode: EndOfList"));
    }
    EXPECT_EQ(store().made, 0);
}

TEST(ClearRadiolinkMode, RemovesTheMode)
{
    store().values[key] = rl5;
    EXPECT_TRUE(clearRadiolinkMode());
    EXPECT_EQ(store().values.count(key), 0U);
    EXPECT_EQ(Bsp_clearRadiolinkMode(), 0);
    EXPECT_THAT(store().calls, ElementsAre("clear " + key, "clear " + key));
    EXPECT_EQ(store().made, 2);
    EXPECT_EQ(store().destroyed, 2);
}

TEST(ClearRadiolinkMode, FailsWhenTheStoreDoes)
{
    store().refuses = true;
    EXPECT_FALSE(clearRadiolinkMode());
    EXPECT_EQ(Bsp_clearRadiolinkMode(), -1);
    EXPECT_THAT(takeLines(), IsEmpty());
}

TEST(RadiolinkMode, DoesNotTouchTheEeprom)
{
    getRadiolinkMode();
    setRadiolinkMode(RadiolinkMode::Rl5);
    clearRadiolinkMode();
    EXPECT_EQ(fakeboard::eeprom().reads, 0);
}

} // namespace
