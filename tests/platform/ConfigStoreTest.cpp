#include "Board.h"
#include "NxuConfig.h"

#include <gmock/gmock.h>

#include <set>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using os::bsp::NxuConfig;
using testing::ElementsAre;
using testing::IsEmpty;
using testsupport::Board;

class ConfigStore : public testing::Test
{
protected:
    /** The names in the board directory. */
    std::set<std::string> entries() const
    {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(board.path())) {
            names.insert(entry.path().filename().string());
        }
        return names;
    }

    Board board;
    NxuConfig config;
};

TEST_F(ConfigStore, HasKeysAndValuesOfItsOwn)
{
    using namespace os::bsp;
    EXPECT_EQ(value::Empty, "");
    const std::set<std::string> values = {value::fpgaVariant::TwoTdm,
                                          value::fpgaVariant::OneTdmRleEqpNoMlhc,
                                          value::radiolinkMode::Rl4, value::radiolinkMode::Rl5};
    EXPECT_EQ(values.size(), 4U);
    EXPECT_EQ(values.count(""), 0U);
    EXPECT_NE(key::FpgaVariant, key::RadiolinkMode);
    EXPECT_NE(key::FpgaVariant, "");
    EXPECT_NE(key::RadiolinkMode, "");
}

TEST_F(ConfigStore, IsNotMadeByReading)
{
    EXPECT_EQ(config.get("key"), os::bsp::value::Empty);
    EXPECT_THAT(entries(), IsEmpty());
}

TEST_F(ConfigStore, IsNotMadeByClearing)
{
    EXPECT_TRUE(config.clear("key"));
    EXPECT_THAT(entries(), IsEmpty());
}

TEST_F(ConfigStore, IsMadeByTheFirstSetAsOneFile)
{
    EXPECT_TRUE(config.set("key", "value"));
    EXPECT_THAT(entries(), ElementsAre("config.mdb"));
    EXPECT_EQ(config.get("key"), "value");
}

TEST_F(ConfigStore, IsMadeAsTheUserWantsNewFiles)
{
    ::umask(027);
    EXPECT_TRUE(config.set("key", "value"));
    EXPECT_EQ(std::filesystem::status(board.file("config.mdb")).permissions(),
              std::filesystem::perms(0640));
}

TEST_F(ConfigStore, IsTheSameForAllObjects)
{
    EXPECT_TRUE(config.set("key", "value"));
    EXPECT_EQ(NxuConfig().get("key"), "value");
}

TEST_F(ConfigStore, KeepsTheLastValueOfEachKey)
{
    EXPECT_TRUE(config.set("a", "1"));
    EXPECT_TRUE(config.set("b", "2"));
    EXPECT_TRUE(config.set("a", "3"));
    EXPECT_EQ(config.get("a"), "3");
    EXPECT_EQ(config.get("b"), "2");
    EXPECT_EQ(config.get("c"), "");
}

TEST_F(ConfigStore, ForgetsAKeyThatIsCleared)
{
    EXPECT_TRUE(config.set("a", "1"));
    EXPECT_TRUE(config.set("b", "2"));
    EXPECT_TRUE(config.clear("a"));
    EXPECT_TRUE(config.clear("a"));
    EXPECT_TRUE(config.clear("c"));
    EXPECT_EQ(config.get("a"), "");
    EXPECT_EQ(config.get("b"), "2");
}

TEST_F(ConfigStore, KeepsKeysAndValuesOfAnyBytes)
{
    const std::string odd("\0a\xFF\n\0", 5);
    EXPECT_TRUE(config.set(odd, odd));
    EXPECT_TRUE(config.set(odd.substr(0, 4), "shorter"));
    EXPECT_EQ(config.get(odd), odd);
    EXPECT_EQ(config.get(odd.substr(0, 4)), "shorter");
}

TEST_F(ConfigStore, KeepsAnEmptyValue)
{
    EXPECT_TRUE(config.set("key", "value"));
    EXPECT_TRUE(config.set("key", ""));
    EXPECT_EQ(config.get("key"), "");
}

TEST_F(ConfigStore, TakesKeysUpToALimit)
{
    EXPECT_TRUE(config.set("key", "value"));
    for (const std::string& key : {std::string(), std::string(512, 'k')}) {
        EXPECT_FALSE(config.set(key, "value"));
        EXPECT_EQ(config.get(key), "");
        EXPECT_TRUE(config.clear(key));
    }
    const std::string longest(511, 'k');
    EXPECT_TRUE(config.set(longest, "value"));
    EXPECT_EQ(config.get(longest), "value");
}

TEST_F(ConfigStore, IsNotMadeWithAKeyThatItCannotTake)
{
    EXPECT_FALSE(config.set("", "value"));
    EXPECT_THAT(entries(), IsEmpty());
}

TEST_F(ConfigStore, TakesValuesUpToItsSize)
{
    const std::string large(400000, 'v');
    EXPECT_TRUE(config.set("key", large));
    EXPECT_EQ(config.get("key"), large);
    EXPECT_FALSE(config.set("other", std::string(1024 * 1024, 'v')));
    EXPECT_FALSE(config.set("key", std::string(1024 * 1024, 'v')));
    EXPECT_EQ(config.get("other"), "");
    EXPECT_EQ(config.get("key"), large);
    EXPECT_TRUE(config.set("other", "small"));
}

TEST_F(ConfigStore, DoesNotFillUpWithOldValues)
{
    for (int i = 0; i < 600; ++i) {
        ASSERT_TRUE(config.set("key", std::string(2000, 'v') + std::to_string(i))) << i;
    }
    EXPECT_EQ(config.get("key"), std::string(2000, 'v') + "599");
    struct stat status
    {};
    ASSERT_EQ(::stat(board.file("config.mdb").c_str(), &status), 0);
    EXPECT_LT(status.st_blocks * 512, 100000);
}

TEST_F(ConfigStore, IsNoticedWhenAnotherTakesItsPlace)
{
    EXPECT_TRUE(config.set("key", "old"));
    std::filesystem::remove(board.file("config.mdb"));
    EXPECT_EQ(config.get("key"), "");
    EXPECT_TRUE(config.set("key", "new"));
    std::filesystem::copy(board.file("config.mdb"), board.file("copy"));
    EXPECT_TRUE(config.set("key", "newer"));
    std::filesystem::rename(board.file("copy"), board.file("config.mdb"));
    EXPECT_EQ(config.get("key"), "new");
}

TEST_F(ConfigStore, IsTheBoardsThatIsAskedFor)
{
    EXPECT_TRUE(config.set("key", "this"));
    const Board other;
    EXPECT_EQ(config.get("key"), "");
    EXPECT_TRUE(config.set("key", "other"));
    ::setenv("BSP_BOARD_DIR", board.path().c_str(), 1);
    EXPECT_EQ(config.get("key"), "this");
}

TEST_F(ConfigStore, CanBeALinkToAStore)
{
    EXPECT_TRUE(config.set("key", "value"));
    std::filesystem::rename(board.file("config.mdb"), board.file("elsewhere"));
    ASSERT_EQ(::symlink("elsewhere", board.file("config.mdb").c_str()), 0);
    EXPECT_EQ(config.get("key"), "value");
    EXPECT_TRUE(config.set("key", "other"));
    EXPECT_EQ(config.get("key"), "other");
    EXPECT_THAT(entries(), ElementsAre("config.mdb", "elsewhere"));
}

TEST_F(ConfigStore, IsOpenOnceForManyObjectsAndThreads)
{
    EXPECT_TRUE(config.set("key", "value"));
    EXPECT_EQ(config.get("key"), "value");
    const int before = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ::close(before);
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([i] {
            NxuConfig own;
            const std::string key = "key " + std::to_string(i);
            for (int j = 0; j < 25; ++j) {
                EXPECT_TRUE(own.set(key, std::to_string(j)));
                EXPECT_EQ(NxuConfig().get(key), std::to_string(j));
                EXPECT_EQ(own.get("key"), "value");
            }
            EXPECT_TRUE(own.clear(key));
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const int after = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ::close(after);
    EXPECT_EQ(after, before);
    EXPECT_EQ(config.get("key 3"), "");
}

TEST_F(ConfigStore, IsNotForTheProgramsThatThisProcessStarts)
{
    EXPECT_TRUE(config.set("key", "value"));
    EXPECT_EQ(config.get("key"), "value");
    int descriptors = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code error;
        if (std::filesystem::read_symlink(entry, error) == board.file("config.mdb")) {
            ++descriptors;
            const int fd = std::stoi(entry.path().filename());
            EXPECT_EQ(::fcntl(fd, F_GETFD), FD_CLOEXEC) << fd;
        }
    }
    EXPECT_GT(descriptors, 0);
}

} // namespace
