#include "Files.h"
#include "RecordingTrace.h"
#include "SlotObject.h"
#include "WarmBoard.h"
#include "WarmDatabase.h"
#include "WarmSlot.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <mutex>

#include <pthread.h>

namespace
{

using os::bsp::WarmSlot;
using os::bsp::dtcm::WarmDatabase;

#if defined(__arm__)
TEST(Layout, OfTheTarget)
{
    EXPECT_EQ(sizeof(SlotObject), 28U);
    EXPECT_EQ(offsetof(SlotObject, mutex), 4U);
    EXPECT_EQ(sizeof(pthread_mutex_t), 24U);
}
#endif

TEST(Layout, OfTheBlocks)
{
    warmboard::useNxu4(warmboard::Cold);
    WarmDatabase& database = WarmDatabase::getInstance();
    std::string expected = warmboard::zeros();
    for (std::size_t i = 0; i < 32; ++i) {
        const std::string name = "object " + std::to_string(i);
        void* object = nullptr;
        ASSERT_TRUE(database.createObject(name, &object, 1008, true));
        std::memset(object, static_cast<int>('a' + i), 1008);
        expected.replace(i * 1024, name.size(), name);
        expected.replace(i * 1024 + 16, 1008, 1008, static_cast<char>('a' + i));
    }
    EXPECT_EQ(warmboard::area(), expected);
}

TEST(Layout, OfTheSlotId)
{
    warmboard::useNxu4(warmboard::Cold);
    WarmSlot slot;
    slot.set(0x01020304);
    const std::string area = warmboard::area();
    EXPECT_EQ(area.substr(0, 16), "SLOT" + std::string(12, '\0'));
    const std::int32_t id = 0x01020304;
    EXPECT_EQ(area.substr(16, 4), testsupport::bytesOf(id));

    pthread_mutexattr_t attributes;
    ::pthread_mutexattr_init(&attributes);
    ::pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
    pthread_mutex_t mutex = {};
    ::pthread_mutex_init(&mutex, &attributes);
    EXPECT_EQ(area.substr(16 + offsetof(SlotObject, mutex), sizeof(mutex)),
              testsupport::bytesOf(mutex));
    EXPECT_EQ(area.substr(16 + sizeof(SlotObject)),
              std::string(32768 - 16 - sizeof(SlotObject), '\0'));
    ::pthread_mutexattr_destroy(&attributes);
    ::pthread_mutex_destroy(&mutex);
}

TEST(Layout, OfTheMutexes)
{
    warmboard::useNxu4(warmboard::Cold);
    WarmDatabase& database = WarmDatabase::getInstance();
    const std::string unlocked = testsupport::readFile("/dev/shm/DtcmSync");
    ASSERT_EQ(unlocked.size(), 32 * sizeof(pthread_mutex_t));
    for (std::size_t i = 0; i < 32; ++i) {
        void* object = nullptr;
        std::mutex* sync = nullptr;
        bool created = false;
        ASSERT_TRUE(database.getObjectData(std::to_string(i), &object, 8, &sync, created));
        const std::lock_guard<std::mutex> guard(*sync);
        const std::string locked = testsupport::readFile("/dev/shm/DtcmSync");
        for (std::size_t j = 0; j < 32; ++j) {
            const std::size_t at = j * sizeof(pthread_mutex_t);
            EXPECT_EQ(locked.compare(at, sizeof(pthread_mutex_t), unlocked, at,
                                     sizeof(pthread_mutex_t)) != 0,
                      i == j);
        }
    }
}

} // namespace
