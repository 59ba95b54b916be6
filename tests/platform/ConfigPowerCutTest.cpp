#include "NxuConfig.h"
#include "SystemCalls.h"
#include "Thrown.h"
#include "WatchedDisk.h"

#include <gmock/gmock.h>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

namespace
{

using os::bsp::NxuConfig;
using namespace testing;
using namespace testsupport;

class ConfigPowerCut : public Test
{
protected:
    ~ConfigPowerCut() override { systemcalls::hooks() = {}; }

    /** What the key has on a board with that store. */
    std::string valueIn(const std::optional<std::string>& store) const
    {
        const Board copy;
        if (store) {
            copy.write("settings", *store);
        }
        std::string value;
        const std::string thrown =
            thrownBy<std::runtime_error>([&value] { value = NxuConfig().get("key"); });
        ::setenv("BSP_BOARD_DIR", board.path().c_str(), 1);
        return thrown == "nothing" ? value : thrown;
    }

    /** Does the work; the images that its steps left. */
    template <typename Work> std::vector<Image> imagesOf(const Work& work)
    {
        disk.watch(board);
        EXPECT_TRUE(work());
        return disk.stop();
    }

    static std::vector<std::string> stepsOf(const std::vector<Image>& images)
    {
        std::vector<std::string> steps;
        for (const Image& image : images) {
            steps.push_back(image.step);
        }
        return steps;
    }

    /** Every image has the old value until one has the new, and the last step leaves the new. */
    void expectOldOrNew(const std::vector<Image>& images, const std::string& before,
                        const std::string& after) const
    {
        ASSERT_GT(images.size(), 2U);
        for (const Image& image : images) {
            const std::string value = valueIn(image.store);
            EXPECT_TRUE(value == before || value == after) << image.step << ": " << value;
        }
        EXPECT_EQ(valueIn(images[images.size() - 1].store), after);
        EXPECT_EQ(valueIn(images[images.size() - 2].store), after);
    }

    Board board;
    NxuConfig config;
    WatchedDisk& disk = WatchedDisk::instance();
};

TEST_F(ConfigPowerCut, LeavesTheOldOrTheNewValue)
{
    EXPECT_TRUE(config.set("key", "first"));
    EXPECT_TRUE(config.set("key", "old"));
    const auto images = imagesOf([&] { return config.set("key", "new"); });
    EXPECT_THAT(stepsOf(images), Contains("write, power goes"));
    EXPECT_THAT(stepsOf(images), Contains("rename, name is lost"));
    expectOldOrNew(images, "old", "new");
}

TEST_F(ConfigPowerCut, LeavesALargeValueWholeOrNotAtAll)
{
    const std::string before(30000, 'a');
    const std::string after(50000, 'b');
    EXPECT_TRUE(config.set("key", before));
    expectOldOrNew(imagesOf([&] { return config.set("key", after); }), before, after);
}

TEST_F(ConfigPowerCut, LeavesAKeyThatIsClearedOrNot)
{
    EXPECT_TRUE(config.set("key", "old"));
    expectOldOrNew(imagesOf([&] { return config.clear("key"); }), "old", "");
}

TEST_F(ConfigPowerCut, LeavesAWholeNewStoreOrNone)
{
    const auto images = imagesOf([&] { return config.set("key", "new"); });
    EXPECT_THAT(stepsOf(images), Contains("rename, name is lost"));
    expectOldOrNew(images, "", "new");
}

TEST_F(ConfigPowerCut, LeavesTheOldOrTheNewOfManyValues)
{
    for (int i = 0; i < 8; ++i) {
        const std::string before = config.get("key");
        const std::string after(static_cast<std::size_t>(i * 1000),
                                static_cast<char>('a' + i % 26));
        disk.watch(board);
        EXPECT_TRUE(config.set("key", after));
        for (const Image& image : disk.stop()) {
            const std::string value = valueIn(image.store);
            EXPECT_TRUE(value == before || value == after) << i << ' ' << image.step;
        }
    }
}

class FailingStep : public ConfigPowerCut, public WithParamInterface<const char*>
{};

TEST_P(FailingStep, LeavesTheFormerStore)
{
    board.write("settings", "# text\nkey = old");
    disk.fail(GetParam(), EIO);
    disk.watch(board);
    EXPECT_FALSE(config.set("key", "new"));
    EXPECT_FALSE(config.clear("key"));
    for (const Image& image : disk.stop()) {
        EXPECT_THAT(valueIn(image.store), AnyOf("old", "new", "")) << image.step;
    }
    EXPECT_THAT(board.entries(), ElementsAre("settings"));
    EXPECT_EQ(readFile(board.file("settings")), "# text\nkey = old");
    EXPECT_EQ(config.get("key"), "old");
    EXPECT_TRUE(config.set("key", "new"));
    EXPECT_EQ(config.get("key"), "new");
}

TEST_P(FailingStep, LeavesNoNewStore)
{
    disk.fail(GetParam(), EIO);
    disk.watch(board);
    EXPECT_FALSE(config.set("key", "value"));
    disk.stop();
    EXPECT_THAT(board.entries(), IsEmpty());
    EXPECT_EQ(config.get("key"), "");
    EXPECT_TRUE(config.set("key", "value"));
    EXPECT_THAT(board.entries(), ElementsAre("settings"));
}

INSTANTIATE_TEST_SUITE_P(Steps, FailingStep, Values("write", "sync", "rename", "sync directory"));

TEST_F(ConfigPowerCut, LeavesWhatTheNextWriterCleansUp)
{
    board.write("settings.new", "half");
    board.write("settings.lock", "");
    EXPECT_TRUE(config.set("key", "value"));
    EXPECT_THAT(board.entries(), ElementsAre("settings"));
}

TEST_F(ConfigPowerCut, FindsALockThatOnlyWritersCanOpen)
{
    board.write("settings", "");
    for (const mode_t mode : {0644U, 0664U, 0666U, 0600U}) {
        ASSERT_EQ(::chmod(board.file("settings").c_str(), mode), 0);
        mode_t modeOfLock = 0;
        disk.watch(board, [&] { modeOfLock = board.modeOf("settings.lock"); });
        EXPECT_TRUE(config.set("key", "value"));
        disk.stop();
        EXPECT_EQ(modeOfLock, mode & 0222U);
    }
}

TEST_F(ConfigPowerCut, TakesNoLockThatIsWorthNothingByNow)
{
    int locks = 0;
    systemcalls::hooks().fcntl = [&](int fd, int command, void* argument) {
        // Whoever had it has ended, and the next one has begun.
        if (command == F_SETLK && ++locks == 1) {
            std::filesystem::remove(board.file("settings.lock"));
            board.write("settings.lock", "");
        }
        return systemcalls::real().fcntl(fd, command, argument);
    };
    EXPECT_TRUE(config.set("key", "value"));
    EXPECT_EQ(locks, 2);
    EXPECT_THAT(board.entries(), ElementsAre("settings"));
}

TEST_F(ConfigPowerCut, ChangesAStoreThatAnotherMadeAfterTheFirstLook)
{
    systemcalls::hooks().realpath = [&](const char* path, char* result) {
        char* const resolved = systemcalls::real().realpath(path, result);
        const int error = errno;
        board.write("settings", "other=1\n");
        errno = error;
        return resolved;
    };
    EXPECT_TRUE(config.set("key", "value"));
    EXPECT_EQ(readFile(board.file("settings")), "other=1\nkey=value\n");
}

TEST_F(ConfigPowerCut, LeavesALockThatIsAnothersByNow)
{
    disk.watch(board, [&] {
        std::filesystem::remove(board.file("settings.lock"));
        board.write("settings.lock", "another's");
    });
    EXPECT_TRUE(config.set("key", "value"));
    disk.stop();
    EXPECT_THAT(board.entries(), ElementsAre("settings", "settings.lock"));
}

TEST_F(ConfigPowerCut, FindsANewStoresLockThatOnlyItsMakerCanOpen)
{
    ::umask(022);
    mode_t modeOfLock = 0;
    disk.watch(board, [&] { modeOfLock = board.modeOf("settings.lock"); });
    EXPECT_TRUE(config.set("key", "value"));
    disk.stop();
    EXPECT_EQ(modeOfLock, 0200U);
}

TEST_F(ConfigPowerCut, IsNoConcernOfADirectoryThatCannotBeSynchronised)
{
    disk.fail("sync directory", EINVAL);
    disk.watch(board);
    EXPECT_TRUE(config.set("key", "value"));
    disk.stop();
    EXPECT_EQ(config.get("key"), "value");
}

} // namespace
