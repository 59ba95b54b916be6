/**
 * @file
 * @brief The first use of the store where there is no memory for what is to be reported.
 */
#include "Allocations.h"
#include "AreaTest.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <mutex>

namespace
{

using namespace areatest;
using namespace testing;
using testsupport::failAllocations;

/** From the first call that fails on there is no memory. */
class WithoutMemoryDeath : public Test
{
protected:
    WithoutMemoryDeath()
    {
        warmcalls::setFailureObserver([](int /*error*/) { failAllocations(LONG_MAX); });
        systemcalls::queue("calloc", {{-1, ENOMEM}});
    }
    ~WithoutMemoryDeath() override { warmcalls::setFailureObserver(nullptr); }
};

TEST_F(WithoutMemoryDeath, TheAssertionComesAfterAMissingDevice)
{
    fakedevices::dtcm().kind = fakedevices::Dtcm::Missing;
    EXPECT_EXIT(WarmDatabase::getInstance(), KilledBySignal(SIGABRT),
                HasSubstr("memoryMapTheDatabase(): Assertion `m_mappedMemory != nullptr' failed."));
}

TEST_F(WithoutMemoryDeath, TheAssertionComesAfterAFailedMapping)
{
    fakedevices::dtcm().kind = fakedevices::Dtcm::Unmappable;
    EXPECT_EXIT(WarmDatabase::getInstance(), KilledBySignal(SIGABRT),
                HasSubstr("memoryMapTheDatabase(): Assertion `m_mappedMemory != nullptr' failed."));
}

/**
 * After a call has failed, the next allocation does: the first of its report. Nothing is reported
 * of a name that does not exist yet.
 */
class WithoutMemoryForReports : public Test
{
protected:
    WithoutMemoryForReports()
    {
        warmboard::useNxu4(warmboard::Warm);
        warmcalls::setFailureObserver([](int error) { failAllocations(error == ENOENT ? 0 : 1); });
    }
    ~WithoutMemoryForReports() override { warmcalls::setFailureObserver(nullptr); }
};

TEST_F(WithoutMemoryForReports, TheMutexesAreMadeAfterAMissingSemaphore)
{
    systemcalls::queue("sem_open", {{-1, ENOSPC}});
    WarmDatabase& database = WarmDatabase::getInstance();
    EXPECT_THAT(takeLines(), IsEmpty()) << "the recorder had no memory";
    EXPECT_THAT(systemcalls::take(), Contains("pthread_mutex_init at 0 shared"));
    void* object = nullptr;
    std::mutex* sync = nullptr;
    bool created = false;
    ASSERT_TRUE(database.getObjectData("A", &object, 8, &sync, created));
    ASSERT_NE(sync, nullptr);
    EXPECT_TRUE(sync->try_lock());
    sync->unlock();
    takeLines();
}

TEST_F(WithoutMemoryForReports, PrivateMutexesAreMadeAfterMissingOnes)
{
    systemcalls::queue("shm_open", {{-1, ENOENT}, {-1, EACCES}});
    WarmDatabase::getInstance();
    EXPECT_THAT(takeLines(), ElementsAre(warm, freeTable));
    EXPECT_THAT(systemcalls::take(), Contains("calloc " + syncSize));
}

} // namespace
