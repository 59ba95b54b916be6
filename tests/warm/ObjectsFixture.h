/**
 * @file
 * @brief A store to work on, and the messages of the operations on its objects.
 */
#ifndef TESTS_WARM_OBJECTSFIXTURE_H
#define TESTS_WARM_OBJECTSFIXTURE_H

#include "AreaTest.h"

#include <mutex>

namespace objectstest
{

using recordingtrace::takeLines;

inline std::string created(const std::string& name, int block, unsigned int size)
{
    return areatest::prefix + "5 createObject(): Created object " + name + " in block " +
           std::to_string(block) + ". Size of object is " + std::to_string(size);
}

inline std::string retrieved(const std::string& name, int block, unsigned int size)
{
    return areatest::prefix + "5 retrieveObject(): Retrieved object " + name + " from block " +
           std::to_string(block) + ". Size of object is " + std::to_string(size);
}

inline std::string synced(const std::string& name, int block)
{
    return areatest::prefix + "5 getObjectSyncPointer(): Sync object for " + name +
           " found for block " + std::to_string(block);
}

inline std::string tooLong(const std::string& name)
{
    return areatest::prefix + "1 validateObject(): Error: blockName " + name + " with length " +
           std::to_string(name.size()) + " is larger than the allowed maximum of 15";
}

inline std::string tooLarge(unsigned int size)
{
    return areatest::prefix + "1 validateObject(): Error: objectSize: " + std::to_string(size) +
           " exceeds the maximum size: 1008";
}

inline std::string alreadyPresent(const std::string& name)
{
    return areatest::prefix + "2 createObject(): Warning: object for block " + name +
           "has been requested to be created, but it was already present in warm area";
}

inline const std::string outOfSpace =
    areatest::prefix + "1 createObject(): Error: DTCM is out of space.";

/** A store that starts with the contents of a file. */
class Objects : public testing::Test
{
protected:
    os::bsp::dtcm::WarmDatabase& open(const std::string& contents = warmboard::zeros())
    {
        warmboard::useNxu4(warmboard::Warm);
        warmboard::fillArea(contents);
        os::bsp::dtcm::WarmDatabase& database = os::bsp::dtcm::WarmDatabase::getInstance();
        recordingtrace::takeLines();
        systemcalls::take();
        return database;
    }

    /** Fills blocks until that many are used; their names are "0", "1", ... */
    void use(os::bsp::dtcm::WarmDatabase& database, int blocks)
    {
        for (int i = 0; i < blocks; ++i) {
            EXPECT_TRUE(database.createObject(std::to_string(i), &m_object, 1, true));
        }
        recordingtrace::takeLines();
        systemcalls::take();
    }

    /** Asks with results that a failure must clear. */
    void expectNothing(os::bsp::dtcm::WarmDatabase& database, const std::string& name,
                       unsigned int size)
    {
        m_object = &database;
        m_sync = reinterpret_cast<std::mutex*>(&m_object);
        m_created = true;
        EXPECT_FALSE(database.getObjectData(name, &m_object, size, &m_sync, m_created));
        EXPECT_EQ(m_object, nullptr);
        EXPECT_EQ(m_sync, nullptr);
        EXPECT_FALSE(m_created);
    }

    /** Notes the semaphore's value at each message. */
    void watchSemaphore()
    {
        recordingtrace::setObserver([this](const recordingtrace::Message& /*message*/) {
            m_values.push_back(warmcalls::semaphoreValue());
        });
    }

    std::vector<int> m_values;
    void* m_object = nullptr;
    std::mutex* m_sync = nullptr;
    bool m_created = false;
};

} // namespace objectstest

#endif
