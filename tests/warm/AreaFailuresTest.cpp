#include "AreaTest.h"

#include <cerrno>
#include <csignal>
#include <ostream>
#include <stdexcept>

namespace
{

using namespace areatest;
using namespace testing;
using namespace warmboard;

const std::string noArea =
    prefix + "1 memoryMapTheDatabase(): Error during initialization of warm area";

/** A device that gives no area. */
struct Useless
{
    const char* name;
    fakedevices::Dtcm::Kind kind;
    std::string message;
    Lines calls;

    friend std::ostream& operator<<(std::ostream& stream, const Useless& device)
    {
        return stream << device.name;
    }
};

class UselessDevice : public TestWithParam<Useless>
{
protected:
    UselessDevice() { fakedevices::dtcm().kind = GetParam().kind; }
};

TEST_P(UselessDevice, IsReplacedByAPrivateArea)
{
    useNxu4(Warm);
    WarmDatabase& database = WarmDatabase::getInstance();
    EXPECT_THAT(takeLines(), ElementsAre(GetParam().message, warm, freeTable));
    EXPECT_EQ(database.getNumberOfFreeBlocks(), 32U);
    EXPECT_EQ(fakedevices::dtcm().calls, GetParam().calls);
    void* object = nullptr;
    EXPECT_TRUE(database.createObject("PRIVATE", &object, 8, true));
}

TEST_P(UselessDevice, CannotBeReplacedWithoutMemory)
{
    systemcalls::queue("calloc", {{-1, ENOMEM}});
    EXPECT_EXIT(WarmDatabase::getInstance(), KilledBySignal(SIGABRT),
                AllOf(HasSubstr("os_extensions/bsp/src/warm/Database.cpp:"),
                      HasSubstr("memoryMapTheDatabase(): Assertion `m_mappedMemory != nullptr' "
                                "failed.")));
}

const Useless uselessDevices[] = {
    {"Missing", fakedevices::Dtcm::Missing, noArea, {"open top.dtcm0"}},
    {"Unmappable",
     fakedevices::Dtcm::Unmappable,
     noArea + ", error: Permission denied",
     {"open top.dtcm0", "close 0"}},
};
INSTANTIATE_TEST_SUITE_P(All, UselessDevice, ValuesIn(uselessDevices),
                         [](const auto& test) { return test.param.name; });

TEST(Device, ThatMayNotBeLockedInMemory)
{
    systemcalls::queue("mmap", {{-1, EAGAIN}});
    useNxu4(Warm);
    WarmDatabase::getInstance();
    EXPECT_THAT(takeLines(),
                ElementsAre(noArea + ", error: Resource temporarily unavailable", warm, freeTable));
}

TEST(Semaphore, ThatCannotBeCreated)
{
    systemcalls::queue("sem_open", {{-1, EACCES}});
    useNxu4(Cold);
    fillArea(areaWith({{0, "KEPT"}}));
    WarmDatabase& database = WarmDatabase::getInstance();
    EXPECT_THAT(takeLines(),
                ElementsAre(prefix + "1 initDatabaseSemaphore(): error in sem_open error: "
                                     "Permission denied"));
    const Lines calls = systemcalls::take();
    EXPECT_EQ(Lines(calls.begin(), calls.begin() + 4),
              (Lines{mapArea, createSemaphore, openSync, createSync}));

    database.lock();
    database.lock();
    database.unlock();
    void* object = nullptr;
    EXPECT_TRUE(database.retrieveObject("KEPT", &object, 8, true));
    EXPECT_THAT(systemcalls::take(), IsEmpty()) << "there is no semaphore to take";
}

TEST(Semaphore, ThatExistsButCannotBeOpened)
{
    makeSharedNames(1);
    systemcalls::queue("sem_open", {systemcalls::Done, {-1, ENOENT}});
    WarmDatabase::getInstance();
    EXPECT_THAT(takeLines(),
                ElementsAre(prefix + "1 initDatabaseSemaphore(): error in sem_open error: "
                                     "No such file or directory"));
    EXPECT_THAT(systemcalls::take(),
                ElementsAre(mapArea, createSemaphore, openSemaphore, openSync, mapSync));
}

TEST(Semaphore, IsWaitedForAgainAfterASignal)
{
    useNxu4(Warm);
    WarmDatabase& database = WarmDatabase::getInstance();
    systemcalls::take();
    systemcalls::queue("sem_wait", {{-1, EINTR}, {-1, EINTR}});
    errno = 77;
    database.lock();
    EXPECT_EQ(errno, 0);
    EXPECT_THAT(systemcalls::take(), ElementsAre("sem_wait", "sem_wait", "sem_wait"));
    EXPECT_EQ(warmcalls::semaphoreValue(), 0);
    database.unlock();
    EXPECT_EQ(warmcalls::semaphoreValue(), 1);
}

TEST(Semaphore, OtherFailuresOfWaitingAreIgnored)
{
    useNxu4(Warm);
    WarmDatabase& database = WarmDatabase::getInstance();
    systemcalls::take();
    systemcalls::queue("sem_wait", {{-1, EINVAL}});
    database.lock();
    EXPECT_THAT(systemcalls::take(), ElementsAre("sem_wait"));
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(warmcalls::semaphoreValue(), 1);
}

TEST(SemLockGuard, HoldsTheSemaphoreForItsScope)
{
    sem_t semaphore;
    ASSERT_EQ(::sem_init(&semaphore, 0, 1), 0);
    int value = -1;
    {
        systemcalls::queue("sem_wait", {{-1, EINTR}});
        const WarmDatabase::SemLockGuard guard(&semaphore);
        ::sem_getvalue(&semaphore, &value);
        EXPECT_EQ(value, 0);
        EXPECT_EQ(errno, 0);
    }
    ::sem_getvalue(&semaphore, &value);
    EXPECT_EQ(value, 1);
    EXPECT_THAT(systemcalls::take(), ElementsAre("sem_wait", "sem_wait", "sem_post"));
    ::sem_destroy(&semaphore);
}

TEST(SemLockGuard, DoesNothingWithoutASemaphore)
{
    {
        const WarmDatabase::SemLockGuard guard(nullptr);
    }
    EXPECT_THAT(systemcalls::take(), IsEmpty());
}

TEST(SharedMemory, ThatCannotBeCreated)
{
    systemcalls::queue("shm_open", {{-1, ENOENT}, {-1, EMFILE}});
    useNxu4(Warm);
    WarmDatabase& database = WarmDatabase::getInstance();
    EXPECT_THAT(takeLines(),
                ElementsAre(warm, freeTable,
                            prefix + "1 initBlockSynchronization(): error in shm_open error: "
                                     "Too many open files"));
    EXPECT_THAT(systemcalls::take(), ElementsAre(mapArea, createSemaphore, "sem_post", openSync,
                                                 createSync, "calloc " + syncSize));
    // The private mutexes work: all bytes 0 is an unlocked one.
    void* object = nullptr;
    std::mutex* sync = nullptr;
    bool created = false;
    ASSERT_TRUE(database.getObjectData("A", &object, 8, &sync, created));
    EXPECT_TRUE(sync->try_lock());
    EXPECT_FALSE(sync->try_lock());
    sync->unlock();
}

TEST(SharedMemoryDeath, WithoutMemoryForPrivateMutexes)
{
    systemcalls::queue("shm_open", {{-1, ENOENT}, {-1, EACCES}});
    systemcalls::queue("calloc", {{-1, ENOMEM}});
    useNxu4(Warm);
    EXPECT_EXIT(WarmDatabase::getInstance(), KilledBySignal(SIGABRT),
                HasSubstr("initBlockSynchronization(): Assertion `m_blockSync != nullptr' "
                          "failed."));
}

TEST(SharedMemory, ThatExistsButCannotBeMappedIsNotNoticed)
{
    makeSharedNames(1);
    systemcalls::queue("mmap", {systemcalls::Done, {-1, EAGAIN}});
    WarmDatabase& database = WarmDatabase::getInstance();
    EXPECT_THAT(takeLines(), IsEmpty());
    void* object = nullptr;
    EXPECT_TRUE(database.createObject("A", &object, 8, true));
    EXPECT_EQ(database.getObjectSyncPointer("A"), MAP_FAILED);
}

TEST(ExceptionAtStart, LeavesTheSemaphoreAtZero)
{
    useNxu4(Cold);
    fakedevices::control().onCreate = [] { throw std::runtime_error("no bus"); };
    const std::string contents = areaWith({{0, "KEPT"}});
    fillArea(contents);
    WarmDatabase& database = WarmDatabase::getInstance();
    EXPECT_THAT(takeLines(),
                ElementsAre(prefix + "1 WarmDatabase(): Error during initialization of warm area: "
                                     "Caught exception [no bus]."));
    EXPECT_THAT(systemcalls::take(), ElementsAre(mapArea, createSemaphore));
    EXPECT_EQ(warmcalls::semaphoreValue(), 0);
    EXPECT_EQ(area(), contents);

    void* object = nullptr;
    EXPECT_TRUE(database.retrieveObject("KEPT", &object, 8, false));
    EXPECT_EQ(database.getObjectSyncPointer("KEPT"), nullptr) << "there are no mutexes";
}

TEST(ExceptionAtStart, OfAnotherKind)
{
    useNxu4(Cold);
    fakedevices::control().onCreate = [] { throw 5; };
    WarmDatabase::getInstance();
    EXPECT_THAT(takeLines(),
                ElementsAre(prefix + "1 WarmDatabase(): Error during initialization of warm area: "
                                     "Caught unknown exception"));
    EXPECT_EQ(warmcalls::semaphoreValue(), 0);
}

TEST(ExceptionAtStart, BeforeThereIsAnArea)
{
    fakedevices::dtcm().onOpen = [] { throw std::runtime_error("no device tree"); };
    WarmDatabase& database = WarmDatabase::getInstance();
    EXPECT_THAT(takeLines(),
                ElementsAre(prefix + "1 WarmDatabase(): Error during initialization of warm area: "
                                     "Caught exception [no device tree]."));
    EXPECT_EQ(database.getNumberOfFreeBlocks(), 0U);
    void* object = &database;
    EXPECT_FALSE(database.createObject("A", &object, 8, true));
    EXPECT_EQ(object, nullptr);
    EXPECT_THAT(takeLines(1),
                ElementsAre(prefix + "1 createObject(): Error: DTCM is out of space."));
}

TEST(Messages, AreNotMadeWhenNobodyWantsThem)
{
    useNxu4(Warm);
    recordingtrace::setLevel("Bsp.WarmDatabase", 4);
    WarmDatabase& database = WarmDatabase::getInstance();
    database.getNumberOfFreeBlocks();
    void* object = nullptr;
    std::mutex* sync = nullptr;
    bool created = false;
    EXPECT_TRUE(database.getObjectData("A", &object, 8, &sync, created));
    EXPECT_TRUE(database.getObjectData("A", &object, 8, &sync, created));
    EXPECT_THAT(takeLines(), IsEmpty());
    EXPECT_TRUE(database.createObject("A", &object, 8, true));
    EXPECT_THAT(takeLines(), ElementsAre(HasSubstr("2 createObject(): Warning")));
}

} // namespace
