#include "Bsp.h"
#include "ManyThreads.h"
#include "RecordingTrace.h"
#include "SlotObject.h"
#include "WarmBoard.h"
#include "WarmCalls.h"
#include "WarmDatabase.h"
#include "WarmSlot.h"

#include <gmock/gmock.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <system_error>

#include <pthread.h>

namespace
{

using os::bsp::slotInstance;
using os::bsp::WarmSlot;
using os::bsp::dtcm::WarmDatabase;
using namespace testing;

const std::string slotSize = std::to_string(sizeof(SlotObject));
const std::string found = "bsp.networking 5 WarmSlot(): The SLOT object was successfully retrieved "
                          "from the warm database";
const std::string made = "bsp.networking 5 WarmSlot(): The SLOT object was created, initializing "
                         "the object contents";
const std::string notThere =
    "bsp.networking 1 WarmSlot(): Error: Could not get the SLOT object from the warm database";

/** Messages of the slot's own channel. */
std::vector<std::string> slotLines()
{
    return recordingtrace::takeLinesOf("bsp.networking");
}

SlotObject& slotObject()
{
    void* object = nullptr;
    EXPECT_TRUE(WarmDatabase::getInstance().retrieveObject("SLOT", &object, 4, true));
    recordingtrace::takeLines();
    return *static_cast<SlotObject*>(object);
}

TEST(Slot, IsNotSetAfterAColdRestart)
{
    warmboard::useNxu4(warmboard::Cold);
    const WarmSlot slot;
    EXPECT_THAT(recordingtrace::takeLines(),
                ElementsAre("Bsp.WarmDatabase 5 clearDatabaseIfColdRestart(): COLD restart, "
                            "clearing database.",
                            "Bsp.WarmDatabase 5 logNamesOfUsedBlocks(): Max number of blocks "
                            "available: 32",
                            "Bsp.WarmDatabase 5 createObject(): Created object SLOT in block 1. "
                            "Size of object is " +
                                slotSize,
                            "Bsp.WarmDatabase 5 getObjectSyncPointer(): Sync object for SLOT "
                            "found for block 1",
                            found, made));
    EXPECT_EQ(slot.get(), -1);
    EXPECT_THAT(slotLines(), ElementsAre("bsp.networking 6 get(): SlotId is: -1"));
}

TEST(Slot, IsKeptOverAWarmRestart)
{
    warmboard::useNxu4(warmboard::Warm);
    std::string area = warmboard::areaWith({{0, "SLOT"}});
    SlotObject object{};
    object.slotId = 5;
    area.replace(16, sizeof(object), testsupport::bytesOf(object));
    warmboard::fillArea(area);
    systemcalls::take();
    const WarmSlot slot;
    EXPECT_THAT(slotLines(),
                ElementsAre(found, "bsp.networking 5 WarmSlot(): The slotId from WARM reset is: "
                                   "5"));
    EXPECT_EQ(slot.get(), 5);
    EXPECT_EQ(warmboard::area(), area) << "its mutex is taken as it is";
}

TEST(Slot, IsZeroUntilItsCreatorHasSetItUp)
{
    warmboard::useNxu4(warmboard::Warm);
    void* object = nullptr;
    ASSERT_TRUE(WarmDatabase::getInstance().createObject("SLOT", &object, 28, true));
    EXPECT_EQ(Bsp_getSlotId(), 0);
}

TEST(Slot, IsSetAndRead)
{
    warmboard::useNxu4(warmboard::Cold);
    WarmSlot slot;
    recordingtrace::takeLines();
    for (const int id : {5, 0, -1, 2147483647, -2147483647 - 1}) {
        slot.set(id);
        EXPECT_EQ(slot.get(), id);
        EXPECT_EQ(WarmSlot().get(), id);
        EXPECT_EQ(slotObject().slotId, id);
        recordingtrace::takeLines();
    }
    slot.set(7);
    slot.get();
    EXPECT_THAT(slotLines(), ElementsAre("bsp.networking 5 set(): Setting slotId to: 7",
                                         "bsp.networking 6 get(): SlotId is: 7"));
}

TEST(Slot, HoldsItsOwnMutexAndNotTheBlocks)
{
    warmboard::useNxu4(warmboard::Cold);
    WarmSlot slot;
    std::mutex* block = WarmDatabase::getInstance().getObjectSyncPointer("SLOT");
    const std::lock_guard<std::mutex> guard(*block);
    SlotObject& object = slotObject();
    bool locked = false;
    int stored = 99;
    recordingtrace::setObserver([&](const recordingtrace::Message& /*message*/) {
        locked = ::pthread_mutex_trylock(&object.mutex) != 0;
        stored = object.slotId;
    });
    slot.set(3);
    EXPECT_TRUE(locked);
    EXPECT_EQ(stored, -1) << "the message comes before the change";
    locked = false;
    EXPECT_EQ(slot.get(), 3);
    EXPECT_TRUE(locked);
    EXPECT_EQ(::pthread_mutex_trylock(&object.mutex), 0) << "it is released";
    ::pthread_mutex_unlock(&object.mutex);
}

TEST(Slot, HasAMutexForAllProcesses)
{
    warmboard::useNxu4(warmboard::Cold);
    WarmDatabase::getInstance();
    systemcalls::take();
    const WarmSlot slot;
    EXPECT_THAT(systemcalls::take(),
                ElementsAre("sem_wait", "sem_post",
                            AllOf(StartsWith("pthread_mutex_init"), EndsWith(" shared"))))
        << "once the store's semaphore has been given back";
}

TEST(Slot, ThrowsWhenItsMutexCannotBeTaken)
{
    warmboard::useNxu4(warmboard::Cold);
    WarmSlot slot;
    SlotObject& object = slotObject();
    // A mutex that tells its owner that it cannot be taken twice.
    pthread_mutexattr_t attributes;
    ASSERT_EQ(::pthread_mutexattr_init(&attributes), 0);
    ASSERT_EQ(::pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_ERRORCHECK), 0);
    ASSERT_EQ(::pthread_mutex_init(&object.mutex, &attributes), 0);
    ::pthread_mutexattr_destroy(&attributes);
    ASSERT_EQ(::pthread_mutex_lock(&object.mutex), 0);
    EXPECT_THROW(slot.get(), std::system_error);
    EXPECT_THROW(slot.set(3), std::system_error);
    EXPECT_EQ(::pthread_mutex_unlock(&object.mutex), 0);
    EXPECT_EQ(slot.get(), -1);
}

TEST(Slot, IsMadeInOrder)
{
    warmboard::useNxu4(warmboard::Cold);
    WarmDatabase::getInstance();
    std::int32_t whenAnnounced = 99;
    recordingtrace::setObserver([&](const recordingtrace::Message& message) {
        if (message.text.find("was created, initializing") != std::string::npos) {
            whenAnnounced = slotObject().slotId;
        }
    });
    const WarmSlot slot;
    EXPECT_EQ(whenAnnounced, 0) << "until then others see an object of zeros";
    EXPECT_EQ(slot.get(), -1);
}

TEST(Slot, WithoutRoomInTheStore)
{
    warmboard::useNxu4(warmboard::Warm);
    warmboard::fillArea(warmboard::fullArea());
    WarmSlot slot;
    EXPECT_THAT(
        recordingtrace::takeLines(1),
        ElementsAre("Bsp.WarmDatabase 1 createObject(): Error: DTCM is out of space.", notThere));
    slot.set(5);
    EXPECT_EQ(slot.get(), -1);
    EXPECT_THAT(recordingtrace::takeLines(), IsEmpty());
}

TEST(Slot, WithoutABlockMutex)
{
    warmboard::useNxu4(warmboard::Cold);
    fakedevices::control().onCreate = [] { throw 5; };
    // The semaphore stays at 0 then; another process gives it, so that this one goes on.
    WarmDatabase& database = WarmDatabase::getInstance();
    database.unlock();
    recordingtrace::takeLines();
    const WarmSlot slot;
    EXPECT_THAT(slotLines(), ElementsAre(notThere));
    EXPECT_EQ(slot.get(), -1);
}

TEST(Slot, WithoutADevice)
{
    fakedevices::dtcm().kind = fakedevices::Dtcm::Missing;
    warmboard::useNxu4(warmboard::Warm);
    EXPECT_EQ(Bsp_getSlotId(), -1);
    Bsp_setSlotId(4);
    EXPECT_EQ(Bsp_getSlotId(), 4) << "for this process";
    EXPECT_THAT(recordingtrace::takeLines(1),
                ElementsAre("Bsp.WarmDatabase 1 memoryMapTheDatabase(): Error during "
                            "initialization of warm area"));
}

TEST(Slot, OfTheProcessIsOneObject)
{
    warmboard::useNxu4(warmboard::Cold);
    EXPECT_EQ(&slotInstance(), &slotInstance());
    Bsp_setSlotId(9);
    EXPECT_EQ(slotInstance().get(), 9);
    EXPECT_EQ(Bsp_getSlotId(), 9);
    EXPECT_EQ(slotObject().slotId, 9);
}

TEST(Slot, IsMadeOnceByManyThreads)
{
    warmboard::useNxu4(warmboard::Cold);
    std::atomic<int> created{0};
    testsupport::inManyThreads(8, [&created](std::size_t /*number*/) {
        Bsp_setSlotId(7);
        EXPECT_EQ(Bsp_getSlotId(), 7);
        void* object = nullptr;
        std::mutex* sync = nullptr;
        bool isNew = false;
        EXPECT_TRUE(WarmDatabase::getInstance().getObjectData("ONE", &object, 4, &sync, isNew));
        created += isNew ? 1 : 0;
    });
    EXPECT_EQ(created, 1);
    int opened = 0;
    for (const std::string& call : systemcalls::take()) {
        opened += call.rfind("sem_open", 0) == 0 ? 1 : 0;
    }
    EXPECT_EQ(opened, 1);
}

/** A slot whose making is interrupted by what reporting it throws. */
void expectUnmadeSlot(const std::function<void()>& throwSomething, const std::string& caught)
{
    warmboard::useNxu4(warmboard::Cold);
    WarmDatabase::getInstance();
    recordingtrace::takeLines();
    recordingtrace::setObserver([&](const recordingtrace::Message& message) {
        if (message.level == 5) {
            throwSomething();
        }
    });
    const WarmSlot slot;
    EXPECT_THAT(recordingtrace::takeLines(),
                ElementsAre("bsp.networking 1 WarmSlot(): Error during initialization of warm "
                            "area: Caught " +
                            caught));
    EXPECT_EQ(slot.get(), -1);
    EXPECT_EQ(warmcalls::semaphoreValue(), 1);
    recordingtrace::setObserver(nullptr);
}

TEST(SlotException, AtTheStartDoesNotPass)
{
    expectUnmadeSlot([] { throw std::runtime_error("no log"); }, "exception [no log].");
}

TEST(SlotException, OfAnotherKind)
{
    expectUnmadeSlot([] { throw 5; }, "unknown exception");
}

TEST(DtcmWrappers, AreTheStoresFunctions)
{
    warmboard::useNxu4(warmboard::Cold);
    void* object = &object;
    void* sync = &object;
    bool created = true;
    EXPECT_EQ(Bsp_retrieveDtcmObject("A", &object, 8), -1);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(Bsp_getDtcmObjectData("A", &object, 1009, &sync, &created), -1);
    EXPECT_EQ(sync, &object);
    EXPECT_FALSE(created);
    recordingtrace::takeLines();

    EXPECT_EQ(Bsp_createDtcmObject("A", &object, 8), 0);
    void* again = nullptr;
    EXPECT_EQ(Bsp_retrieveDtcmObject("A", &again, 9), 0);
    EXPECT_EQ(again, object);
    EXPECT_EQ(Bsp_getDtcmObjectData("A", &again, 10, &sync, &created), 0);
    EXPECT_EQ(again, object);
    EXPECT_EQ(sync, WarmDatabase::getInstance().getObjectSyncPointer("A"));
    EXPECT_FALSE(created);
    EXPECT_EQ(Bsp_createDtcmObject(std::string(16, 'n').c_str(), &object, 8), -1);
    recordingtrace::takeLines();
}

} // namespace
