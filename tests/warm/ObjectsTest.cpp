#include "GroupedDigits.h"
#include "ObjectsFixture.h"

#include <algorithm>

namespace
{

using namespace objectstest;
using os::bsp::dtcm::WarmDatabase;
using namespace testing;
using namespace warmboard;
using Validation = Objects;
using Creation = Objects;
using Retrieval = Objects;

constexpr std::size_t DataSize = 1008;

TEST_F(Validation, AcceptsWhatFits)
{
    WarmDatabase& database = open();
    EXPECT_TRUE(database.validateObject("", 0));
    EXPECT_TRUE(database.validateObject(std::string(15, 'n'), 1008));
    EXPECT_THAT(takeLines(), IsEmpty());
}

TEST_F(Validation, RefusesALongName)
{
    WarmDatabase& database = open();
    const std::string name(16, 'n');
    EXPECT_FALSE(database.validateObject(name, 5000)) << "the size is not looked at";
    EXPECT_THAT(takeLines(), ElementsAre(tooLong(name)));
}

TEST_F(Validation, ReportsNumbersTheSameInAllLocales)
{
    WarmDatabase& database = open();
    const testsupport::GroupedDigits digits;
    EXPECT_FALSE(database.validateObject("A", 1009));
    EXPECT_THAT(takeLines(), ElementsAre(tooLarge(1009)));
}

TEST_F(Validation, RefusesALargeObject)
{
    WarmDatabase& database = open();
    EXPECT_FALSE(database.validateObject("A", 1009));
    EXPECT_FALSE(database.validateObject("A", 0xFFFFFFFFU));
    EXPECT_THAT(takeLines(), ElementsAre(tooLarge(1009), tooLarge(0xFFFFFFFFU)));
}

TEST_F(Validation, ComesBeforeTheSemaphore)
{
    WarmDatabase& database = open();
    m_object = &database;
    EXPECT_FALSE(database.createObject(std::string(16, 'n'), &m_object, 8, true));
    EXPECT_EQ(m_object, nullptr);
    m_object = &database;
    EXPECT_FALSE(database.retrieveObject("A", &m_object, 1009, true));
    EXPECT_EQ(m_object, nullptr);
    EXPECT_THAT(systemcalls::take(), IsEmpty());
    EXPECT_THAT(takeLines(), ElementsAre(tooLong(std::string(16, 'n')), tooLarge(1009)));
    EXPECT_EQ(area(), zeros());
}

TEST_F(Creation, TakesTheFirstFreeBlock)
{
    std::string contents = areaWith({{0, "FIRST"}, {2, "BEHIND"}});
    WarmDatabase& database = open(contents);
    ASSERT_TRUE(database.createObject("SECOND", &m_object, 20, true));
    EXPECT_THAT(takeLines(), ElementsAre(created("SECOND", 2, 20)));
    contents.replace(1024, 1024, "SECOND" + std::string(1018, '\0'));
    EXPECT_EQ(area(), contents);

    static_cast<char*>(m_object)[0] = '!';
    contents[1024 + 16] = '!';
    EXPECT_EQ(area(), contents) << "the data is 16 bytes into the block";
}

TEST_F(Creation, AcceptsTheLongestNameAndTheLargestObject)
{
    WarmDatabase& database = open(std::string(1, '\0') + std::string(32767, 'x'));
    ASSERT_TRUE(database.createObject(std::string(15, 'n'), &m_object, 1008, true));
    EXPECT_EQ(area(),
              std::string(15, 'n') + std::string(1009, '\0') + std::string(32768 - 1024, 'x'));
}

TEST_F(Creation, OfAPresentNameWipesItsData)
{
    const std::string contents = areaWith({{0, "FIRST"}, {1, "SECOND"}});
    WarmDatabase& database = open(contents);
    ASSERT_TRUE(database.createObject("FIRST", &m_object, 20, true));
    EXPECT_THAT(takeLines(), ElementsAre(alreadyPresent("FIRST"), created("FIRST", 1, 20)));
    EXPECT_EQ(area().substr(0, 1024), "FIRST" + std::string(1019, '\0'));
    EXPECT_EQ(area().substr(1024), contents.substr(1024));
}

TEST_F(Creation, OfThe33rdNameFails)
{
    WarmDatabase& database = open();
    use(database, 32);
    const std::string before = area();
    m_object = &database;
    EXPECT_FALSE(database.createObject("one more", &m_object, 8, true));
    EXPECT_EQ(m_object, nullptr);
    EXPECT_THAT(takeLines(), ElementsAre(outOfSpace));
    EXPECT_EQ(area(), before);
    EXPECT_EQ(warmcalls::semaphoreValue(), 1);

    EXPECT_TRUE(database.createObject("31", &m_object, 8, true));
    EXPECT_THAT(takeLines(), ElementsAre(alreadyPresent("31"), created("31", 32, 8)));
}

TEST_F(Creation, OfTheEmptyNameLeavesItsBlockFree)
{
    WarmDatabase& database = open(std::string(1, '\0') + std::string(32767, 'x'));
    ASSERT_TRUE(database.createObject("", &m_object, 8, true));
    EXPECT_EQ(area(), std::string(1024, '\0') + std::string(32768 - 1024, 'x'));
    ASSERT_TRUE(database.createObject("A", &m_object, 8, true));
    EXPECT_THAT(takeLines(), ElementsAre(created("", 1, 8), created("A", 1, 8)));
}

TEST_F(Creation, ReleasesTheSemaphoreBeforeItReports)
{
    WarmDatabase& database = open();
    watchSemaphore();
    EXPECT_TRUE(database.createObject("A", &m_object, 8, true));
    EXPECT_THAT(m_values, ElementsAre(1));
    EXPECT_TRUE(database.createObject("A", &m_object, 8, true));
    EXPECT_THAT(m_values, ElementsAre(1, 0, 1)) << "it is held while the warning is reported";
    EXPECT_THAT(systemcalls::take(), ElementsAre("sem_wait", "sem_post", "sem_wait", "sem_post"));

    use(database, 31);
    m_values.clear();
    EXPECT_FALSE(database.createObject("one more", &m_object, 8, true));
    EXPECT_THAT(m_values, ElementsAre(1));
    takeLines();
}

TEST_F(Creation, TakesNoSemaphoreUnlessAsked)
{
    WarmDatabase& database = open();
    EXPECT_TRUE(database.createObject("A", &m_object, 8, false));
    EXPECT_TRUE(database.retrieveObject("A", &m_object, 8, false));
    EXPECT_THAT(systemcalls::take(), IsEmpty());
}

TEST_F(Retrieval, FindsTheObjectUntouched)
{
    const std::string contents = areaWith({{0, "FIRST"}, {1, "SECOND"}});
    WarmDatabase& database = open(contents);
    ASSERT_TRUE(database.retrieveObject("SECOND", &m_object, 1008, true));
    EXPECT_THAT(takeLines(), ElementsAre(retrieved("SECOND", 2, 1008)));
    EXPECT_EQ(area(), contents);
    EXPECT_EQ(std::string(static_cast<char*>(m_object), DataSize), contents.substr(1040, DataSize));
}

TEST_F(Retrieval, StopsAtTheFirstFreeBlock)
{
    WarmDatabase& database = open(areaWith({{0, "FIRST"}, {2, "BEHIND"}}));
    m_object = &database;
    EXPECT_FALSE(database.retrieveObject("BEHIND", &m_object, 8, true));
    EXPECT_EQ(m_object, nullptr);
    EXPECT_THAT(takeLines(), IsEmpty());
    EXPECT_THAT(systemcalls::take(), ElementsAre("sem_wait", "sem_post"));
}

TEST_F(Retrieval, LooksThroughAllBlocks)
{
    WarmDatabase& database = open();
    use(database, 32);
    EXPECT_TRUE(database.retrieveObject("31", &m_object, 8, true));
    EXPECT_FALSE(database.retrieveObject("32", &m_object, 8, true));
    EXPECT_THAT(takeLines(), ElementsAre(retrieved("31", 32, 8)));
    EXPECT_EQ(warmcalls::semaphoreValue(), 1);
}

TEST_F(Retrieval, DoesNotCompareSizes)
{
    WarmDatabase& database = open();
    ASSERT_TRUE(database.createObject("A", &m_object, 1, true));
    void* again = nullptr;
    EXPECT_TRUE(database.retrieveObject("A", &again, 1000, true));
    EXPECT_EQ(again, m_object);
}

TEST_F(Retrieval, ReportsBeforeItReleasesTheSemaphore)
{
    WarmDatabase& database = open(areaWith({{0, "A"}}));
    watchSemaphore();
    EXPECT_TRUE(database.retrieveObject("A", &m_object, 8, true));
    EXPECT_THAT(m_values, ElementsAre(0));
    EXPECT_EQ(warmcalls::semaphoreValue(), 1);
}

TEST_F(Retrieval, TellsNamesApart)
{
    // Names that end, begin or go on alike, of every length.
    const std::vector<std::string> names = testsupport::wordsOf(
        "A B AB ABC ABCD XBCD AXCD ABCDE ABCDEFG ABCDEFGH ABCDXFGH XBCDEFGH ABCDEFGHIJK "
        "ABCDEFGHXJK ABCDEFGHIJKLMNO ABCXEFGHIJKLMNO ABCDEFGHIJKLMNX \xC4 \xC4\x80 \x80\xC4");
    WarmDatabase& database = open();
    std::vector<void*> objects;
    for (const std::string& name : names) {
        ASSERT_TRUE(database.createObject(name, &m_object, 8, true));
        objects.push_back(m_object);
    }
    for (std::size_t i = 0; i < names.size(); ++i) {
        ASSERT_TRUE(database.retrieveObject(names[i], &m_object, 8, true)) << names[i];
        EXPECT_EQ(m_object, objects[i]) << names[i];
    }
    std::sort(objects.begin(), objects.end());
    EXPECT_EQ(std::unique(objects.begin(), objects.end()), objects.end());
    for (const char* absent : {"", "C", "ABCDEF", "abc", "ABCDEFGHIJKLMN", "\xC3"}) {
        EXPECT_FALSE(database.retrieveObject(absent, &m_object, 8, true)) << absent;
    }
}

TEST_F(Retrieval, OfANameWithANul)
{
    std::string contents = areaWith({{0, "AB"}, {1, "LONGER"}});
    contents.replace(0, 6, std::string("AB\0CD\0", 6));
    WarmDatabase& database = open(contents);
    EXPECT_TRUE(database.retrieveObject("AB", &m_object, 8, true)) << "what follows is no name";
    for (const std::string& name : {std::string("AB\0", 3), std::string("AB\0CD", 5)}) {
        EXPECT_FALSE(database.retrieveObject(name, &m_object, 8, true)) << name.size();
        EXPECT_EQ(database.getObjectSyncPointer(name), nullptr);
    }
}

TEST_F(Retrieval, InAnAreaThatWasNeverCleared)
{
    WarmDatabase& database = open(std::string(32768, 'A'));
    EXPECT_FALSE(database.retrieveObject(std::string(15, 'A'), &m_object, 8, true))
        << "that name would end";
    EXPECT_EQ(database.getObjectSyncPointer(std::string(16, 'A')), nullptr);
    EXPECT_EQ(database.getObjectSyncPointer(std::string(1000, 'A')), nullptr);
    EXPECT_FALSE(database.createObject("A", &m_object, 8, true));
    EXPECT_THAT(takeLines(), ElementsAre(outOfSpace));
}

} // namespace
