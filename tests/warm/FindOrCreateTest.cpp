#include "ObjectsFixture.h"

#include <cstddef>
#include <mutex>

#include <pthread.h>

namespace
{

using namespace objectstest;
using os::bsp::dtcm::WarmDatabase;
using namespace testing;
using namespace warmboard;
using FindOrCreate = Objects;
using SyncPointer = Objects;
using CInterface = Objects;

TEST_F(FindOrCreate, CreatesOnce)
{
    WarmDatabase& database = open();
    ASSERT_TRUE(database.getObjectData("A", &m_object, 8, &m_sync, m_created));
    EXPECT_TRUE(m_created);
    EXPECT_THAT(takeLines(), ElementsAre(created("A", 1, 8), synced("A", 1)));
    void* again = nullptr;
    std::mutex* syncAgain = nullptr;
    ASSERT_TRUE(database.getObjectData("A", &again, 9, &syncAgain, m_created));
    EXPECT_FALSE(m_created);
    EXPECT_EQ(again, m_object);
    EXPECT_EQ(syncAgain, m_sync);
    EXPECT_NE(m_sync, nullptr);
    EXPECT_THAT(takeLines(), ElementsAre(retrieved("A", 1, 9), synced("A", 1)));
}

TEST_F(FindOrCreate, IsReportedFromTheLevelOfInformationOn)
{
    WarmDatabase& database = open(areaWith({{0, "A"}}));
    recordingtrace::setLevel("Bsp.WarmDatabase", 5);
    ASSERT_TRUE(database.getObjectData("A", &m_object, 8, &m_sync, m_created));
    EXPECT_THAT(takeLines(), ElementsAre(retrieved("A", 1, 8), synced("A", 1)));
    recordingtrace::setLevel("Bsp.WarmDatabase", 4);
    ASSERT_TRUE(database.getObjectData("A", &m_object, 8, &m_sync, m_created));
    EXPECT_THAT(takeLines(), IsEmpty());
}

TEST_F(FindOrCreate, HoldsTheSemaphoreAllTheTime)
{
    WarmDatabase& database = open();
    watchSemaphore();
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(database.getObjectData("A", &m_object, 8, &m_sync, m_created));
        EXPECT_THAT(systemcalls::take(), ElementsAre("sem_wait", "sem_post"));
    }
    EXPECT_THAT(m_values, ElementsAre(0, 0, 0, 0));
}

TEST_F(FindOrCreate, ReportsTwiceWhatDoesNotFit)
{
    WarmDatabase& database = open(areaWith({{0, "A"}}));
    const std::string name(16, 'n');
    expectNothing(database, name, 8);
    EXPECT_THAT(takeLines(), ElementsAre(tooLong(name), tooLong(name)));

    expectNothing(database, "A", 1009);
    EXPECT_THAT(takeLines(), ElementsAre(tooLarge(1009), tooLarge(1009)));
    EXPECT_EQ(warmcalls::semaphoreValue(), 1);
}

TEST_F(FindOrCreate, FailsInAFullStore)
{
    WarmDatabase& database = open();
    use(database, 32);
    expectNothing(database, "one more", 8);
    EXPECT_THAT(takeLines(), ElementsAre(outOfSpace));
    EXPECT_EQ(warmcalls::semaphoreValue(), 1);
    EXPECT_TRUE(database.getObjectData("31", &m_object, 8, &m_sync, m_created));
    EXPECT_FALSE(m_created);
}

TEST_F(FindOrCreate, OfTheEmptyNameHasNoMutex)
{
    WarmDatabase& database = open();
    for (int i = 0; i < 2; ++i) {
        m_sync = reinterpret_cast<std::mutex*>(&m_object);
        EXPECT_TRUE(database.getObjectData("", &m_object, 8, &m_sync, m_created));
        EXPECT_TRUE(m_created);
        EXPECT_NE(m_object, nullptr);
        EXPECT_EQ(m_sync, nullptr);
        EXPECT_THAT(takeLines(), ElementsAre(created("", 1, 8)));
    }
}

TEST_F(FindOrCreate, OfANameWithANulHasNoMutex)
{
    WarmDatabase& database = open();
    const std::string name("AB\0CD", 5);
    EXPECT_TRUE(database.getObjectData(name, &m_object, 8, &m_sync, m_created));
    EXPECT_TRUE(m_created);
    EXPECT_EQ(m_sync, nullptr);
    EXPECT_EQ(area().substr(0, 16), "AB" + std::string(14, '\0'));
}

TEST_F(SyncPointer, IsTheSlotOfTheBlock)
{
    WarmDatabase& database = open();
    use(database, 32);
    const auto* first = reinterpret_cast<const char*>(database.getObjectSyncPointer("0"));
    ASSERT_NE(first, nullptr);
    EXPECT_THAT(takeLines(), ElementsAre(synced("0", 1)));
    for (int i = 0; i < 32; ++i) {
        const std::string name = std::to_string(i);
        const auto* slot = reinterpret_cast<const char*>(database.getObjectSyncPointer(name));
        EXPECT_EQ(slot - first, static_cast<std::ptrdiff_t>(sizeof(pthread_mutex_t)) * i);
    }
    takeLines();
    EXPECT_EQ(database.getObjectSyncPointer("32"), nullptr);
    EXPECT_THAT(takeLines(), IsEmpty());
    EXPECT_THAT(systemcalls::take(), IsEmpty()) << "the caller holds the semaphore";
}

TEST_F(SyncPointer, StopsAtTheFirstFreeBlock)
{
    WarmDatabase& database = open(areaWith({{0, "FIRST"}, {2, "BEHIND"}}));
    EXPECT_EQ(database.getObjectSyncPointer("BEHIND"), nullptr);
    EXPECT_EQ(database.getObjectSyncPointer(""), nullptr);
}

TEST_F(SyncPointer, IsLockedAsAStandardMutexByEachAlone)
{
    WarmDatabase& database = open();
    use(database, 2);
    std::mutex* first = database.getObjectSyncPointer("0");
    std::mutex* second = database.getObjectSyncPointer("1");
    const std::lock_guard<std::mutex> guard(*first);
    EXPECT_FALSE(first->try_lock());
    EXPECT_TRUE(second->try_lock());
    second->unlock();
}

TEST_F(CInterface, CreatesAndRetrieves)
{
    open();
    EXPECT_EQ(WarmDatabase_retrieveObject("A", &m_object, 8), -1);
    EXPECT_EQ(m_object, nullptr);
    EXPECT_EQ(WarmDatabase_createObject("A", &m_object, 8), 0);
    void* again = nullptr;
    EXPECT_EQ(WarmDatabase_retrieveObject("A", &again, 9), 0);
    EXPECT_EQ(again, m_object);
    EXPECT_THAT(takeLines(), ElementsAre(created("A", 1, 8), retrieved("A", 1, 9)));
    EXPECT_THAT(systemcalls::take(), ElementsAre("sem_wait", "sem_post", "sem_wait", "sem_post",
                                                 "sem_wait", "sem_post"));
    EXPECT_EQ(WarmDatabase_createObject("A", &m_object, 1009), -1);
    EXPECT_EQ(m_object, nullptr);
    EXPECT_THAT(takeLines(), ElementsAre(tooLarge(1009)));
}

TEST_F(CInterface, FindsOrCreates)
{
    WarmDatabase& database = open();
    void* sync = nullptr;
    EXPECT_EQ(WarmDatabase_getObjectData("A", &m_object, 8, &sync, &m_created), 0);
    EXPECT_TRUE(m_created);
    EXPECT_EQ(sync, database.getObjectSyncPointer("A"));
    EXPECT_EQ(WarmDatabase_getObjectData("A", &m_object, 8, &sync, &m_created), 0);
    EXPECT_FALSE(m_created);
}

TEST_F(CInterface, WritesCreatedButNotSyncOnFailure)
{
    open();
    void* sync = this;
    m_object = this;
    m_created = true;
    EXPECT_EQ(WarmDatabase_getObjectData("A", &m_object, 1009, &sync, &m_created), -1);
    EXPECT_EQ(m_object, nullptr);
    EXPECT_EQ(sync, this);
    EXPECT_FALSE(m_created);
    EXPECT_THAT(takeLines(), ElementsAre(tooLarge(1009), tooLarge(1009)));
}

TEST_F(CInterface, GivesANullMutexForTheEmptyName)
{
    open();
    void* sync = this;
    EXPECT_EQ(WarmDatabase_getObjectData("", &m_object, 8, &sync, &m_created), 0);
    EXPECT_EQ(sync, nullptr);
}

TEST_F(CInterface, RefusesANullName)
{
    open();
    m_object = this;
    EXPECT_EQ(WarmDatabase_createObject(nullptr, &m_object, 8), -1);
    EXPECT_EQ(m_object, nullptr);
    m_object = this;
    EXPECT_EQ(WarmDatabase_retrieveObject(nullptr, &m_object, 8), -1);
    EXPECT_EQ(m_object, nullptr);
    m_object = this;
    m_created = true;
    void* sync = this;
    EXPECT_EQ(WarmDatabase_getObjectData(nullptr, &m_object, 8, &sync, &m_created), -1);
    EXPECT_EQ(m_object, nullptr);
    EXPECT_FALSE(m_created);
    EXPECT_EQ(sync, this);
}

} // namespace
