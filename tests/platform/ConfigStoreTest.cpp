#include "Board.h"
#include "ManyThreads.h"
#include "NxuConfig.h"
#include "Program.h"
#include "Sanitizers.h"
#include "SettingsFile.h"
#include "SystemCalls.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <set>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using os::bsp::NxuConfig;
using namespace testing;
using namespace testsupport;

class ConfigStore : public Test
{
protected:
    ~ConfigStore() override { systemcalls::hooks() = {}; }

    static void countOpens(std::atomic<int>& count)
    {
        systemcalls::hooks().openat = [&](int directory, const char* path, int flags, mode_t mode) {
            ++count;
            return systemcalls::real().openat(directory, path, flags, mode);
        };
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
    EXPECT_THAT(board.entries(), IsEmpty());
}

TEST_F(ConfigStore, IsNotMadeByClearing)
{
    EXPECT_TRUE(config.clear("key"));
    EXPECT_THAT(board.entries(), IsEmpty());
}

TEST_F(ConfigStore, IsMadeByTheFirstSetAsOneFile)
{
    EXPECT_TRUE(config.set("key", "value"));
    EXPECT_THAT(board.entries(), ElementsAre("settings"));
    EXPECT_EQ(config.get("key"), "value");
}

TEST_F(ConfigStore, IsMadeAsTheUserWantsNewFiles)
{
    ::umask(027);
    EXPECT_TRUE(config.set("key", "value"));
    EXPECT_EQ(board.modeOf("settings"), 0640U);
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
    const std::string odd("\0a\xFF\n= \0 ", 8);
    EXPECT_TRUE(config.set(odd, odd));
    EXPECT_TRUE(config.set(odd.substr(0, 4), "shorter"));
    EXPECT_EQ(config.get(odd), odd);
    EXPECT_EQ(config.get(odd.substr(0, 4)), "shorter");
}

TEST_F(ConfigStore, IsATextThatPeopleCanReadAndWrite)
{
    board.write("settings", "# on the roof\n\n RadiolinkMode = Rl4 \n#end");
    EXPECT_EQ(config.get("RadiolinkMode"), "Rl4");
    EXPECT_TRUE(config.set("RadiolinkMode", "Rl5"));
    EXPECT_TRUE(config.set("a=b", " 1\n"));
    EXPECT_EQ(readFile(board.file("settings")),
              "# on the roof\n\nRadiolinkMode=Rl5\n#end\na\\x3Db=\\x201\\n\n");
    EXPECT_TRUE(config.clear("RadiolinkMode"));
    EXPECT_EQ(readFile(board.file("settings")), "# on the roof\n\n#end\na\\x3Db=\\x201\\n\n");
}

TEST_F(ConfigStore, KeepsItsModeAndOwner)
{
    board.write("settings", "");
    const std::string file = board.file("settings");
    ASSERT_EQ(::chmod(file.c_str(), 0604), 0);
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(file.c_str(), 1234, 4321), 0);
    }
    struct stat before = {};
    ASSERT_EQ(::stat(file.c_str(), &before), 0);
    EXPECT_TRUE(config.set("key", "value"));
    struct stat after = {};
    ASSERT_EQ(::stat(file.c_str(), &after), 0);
    EXPECT_NE(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mode, before.st_mode);
    EXPECT_EQ(after.st_uid, before.st_uid);
    EXPECT_EQ(after.st_gid, before.st_gid);
}

TEST_F(ConfigStore, IsReadOnceWhileNobodyChangesIt)
{
    EXPECT_TRUE(config.set("key", "value"));
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(config.get("key"), "value");
    std::atomic<int> filesOpened{0};
    countOpens(filesOpened);
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(config.get("key"), "value");
        EXPECT_EQ(NxuConfig().get("none"), "");
    }
    EXPECT_EQ(filesOpened, 0);
}

TEST_F(ConfigStore, IsReadAgainAsLongAsAChangeMayNotShowInItsTimes)
{
    EXPECT_TRUE(config.set("key", "value"));
    systemcalls::hooks().clock_gettime = [](clockid_t clock, timespec* time) {
        const int result = systemcalls::real().clock_gettime(clock, time);
        time->tv_sec -= 3600;
        return result;
    };
    std::atomic<int> filesOpened{0};
    countOpens(filesOpened);
    for (int i = 0; i < 3; ++i) {
        const int before = filesOpened;
        EXPECT_EQ(config.get("key"), "value");
        EXPECT_GT(filesOpened, before);
    }
}

TEST(FileState, IsSettledWhenTheNextChangeGetsAnotherTime)
{
    struct stat status = {};
    status.st_ctim = {1000, 500};
    EXPECT_FALSE(settings::FileState(status).isSettled({1000, 499}));
    EXPECT_FALSE(settings::FileState(status).isSettled({1000, 500}));
    EXPECT_TRUE(settings::FileState(status).isSettled({1000, 501}));
    EXPECT_TRUE(settings::FileState(status).isSettled({1001, 0}));
    status.st_ctim = {1000, 0};
    EXPECT_FALSE(settings::FileState(status).isSettled({1001, 999999999}));
    EXPECT_FALSE(settings::FileState(status).isSettled({1002, 0}));
    EXPECT_TRUE(settings::FileState(status).isSettled({1002, 1}));
}

TEST_F(ConfigStore, IsReadAgainWhenItWasEditedInPlace)
{
    for (int i = 0; i < 200; ++i) {
        // Of the same size, often with the same times.
        const std::string value = std::to_string(100 + i);
        board.write("settings", "key=" + value);
        ASSERT_EQ(config.get("key"), value);
    }
}

TEST_F(ConfigStore, IsReadAgainWhenItsTimesWereSetBack)
{
    const std::string file = board.file("settings");
    const timespec times[] = {{1000000000, 1}, {1000000000, 1}};
    board.write("settings", "key=1");
    ASSERT_EQ(::utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(config.get("key"), "1");
    EXPECT_EQ(config.get("key"), "1");
    board.write("settings", "key=2");
    ASSERT_EQ(::utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
    EXPECT_EQ(config.get("key"), "2");
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
    EXPECT_THAT(board.entries(), IsEmpty());
}

TEST_F(ConfigStore, TakesValuesUpToItsSize)
{
    const std::string large(400000, 'v');
    EXPECT_TRUE(config.set("key", large));
    EXPECT_EQ(config.get("key"), large);
    EXPECT_FALSE(config.set("other", std::string(1024 * 1024, 'v')));
    EXPECT_FALSE(config.set("key", std::string(1024 * 1024, 'v')));
    EXPECT_FALSE(config.set("key", std::string(400000, '\0')));
    EXPECT_EQ(config.get("other"), "");
    EXPECT_EQ(config.get("key"), large);
    EXPECT_TRUE(config.set("other", "small"));
    EXPECT_TRUE(config.clear("other"));
    const std::string largest(1024 * 1024 - 5, 'v');
    EXPECT_TRUE(config.set("key", largest));
    EXPECT_EQ(config.get("key"), largest);
    EXPECT_FALSE(config.set("key", largest + 'v'));
    EXPECT_EQ(config.get("key"), largest);
}

TEST_F(ConfigStore, DoesNotFillUpWithOldValues)
{
    for (int i = 0; i < 50; ++i) {
        ASSERT_TRUE(config.set("key", std::string(2000, 'v') + std::to_string(i))) << i;
    }
    EXPECT_EQ(config.get("key"), std::string(2000, 'v') + "49");
    EXPECT_EQ(std::filesystem::file_size(board.file("settings")), 2007U);
    EXPECT_THAT(board.entries(), ElementsAre("settings"));
}

TEST_F(ConfigStore, IsNoticedWhenAnotherTakesItsPlace)
{
    EXPECT_TRUE(config.set("key", "old"));
    std::filesystem::remove(board.file("settings"));
    EXPECT_EQ(config.get("key"), "");
    EXPECT_TRUE(config.set("key", "new"));
    std::filesystem::copy(board.file("settings"), board.file("copy"));
    EXPECT_TRUE(config.set("key", "newer"));
    std::filesystem::rename(board.file("copy"), board.file("settings"));
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
    std::filesystem::rename(board.file("settings"), board.file("elsewhere"));
    ASSERT_EQ(::symlink("elsewhere", board.file("settings").c_str()), 0);
    EXPECT_EQ(config.get("key"), "value");
    EXPECT_TRUE(config.set("key", "other"));
    EXPECT_EQ(config.get("key"), "other");
    EXPECT_THAT(board.entries(), ElementsAre("elsewhere", "settings"));
}

TEST_F(ConfigStore, IsForManyObjectsAndThreads)
{
    EXPECT_TRUE(config.set("key", "value"));
    EXPECT_EQ(config.get("key"), "value");
    const std::size_t descriptors = openDescriptors();
    inManyThreads(8, [](std::size_t number) {
        NxuConfig own;
        const std::string key = "key " + std::to_string(number);
        for (int i = 0; i < 25; ++i) {
            EXPECT_TRUE(own.set(key, std::to_string(i)));
            EXPECT_EQ(NxuConfig().get(key), std::to_string(i));
            EXPECT_EQ(own.get("key"), "value");
        }
        EXPECT_TRUE(own.clear(key));
    });
    EXPECT_EQ(openDescriptors(), descriptors);
    EXPECT_EQ(config.get("key 3"), "");
}

TEST_F(ConfigStore, IsNotOpenBetweenCalls)
{
    EXPECT_TRUE(config.set("key", "value"));
    EXPECT_EQ(config.get("key"), "value");
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        const std::string target = std::filesystem::read_symlink(entry, gone).string();
        EXPECT_NE(target.rfind(board.path().string(), 0), 0U) << target;
    }
}

TEST_F(ConfigStore, GetsNothingThatTheProgramPrints)
{
    if (isSanitized("thread")) {
        GTEST_SKIP() << "the sanitizer takes printing on closed streams, as here, for a race";
    }
    EXPECT_TRUE(config.set("key", "value"));
    EXPECT_TRUE(holdsInCopy([this] {
        for (int fd = 0; fd <= STDERR_FILENO; ++fd) {
            ::close(fd);
        }
        std::atomic<bool> done{false};
        std::thread printer([&] {
            while (!done) {
                for (int fd = 0; fd <= STDERR_FILENO; ++fd) {
                    [[maybe_unused]] const ssize_t size = ::write(fd, "printed", 7);
                }
            }
        });
        bool isFine = true;
        for (int i = 0; i < 50; ++i) {
            const std::string value = std::to_string(i);
            isFine = config.set("key", value) && config.get("key") == value && isFine;
        }
        done = true;
        printer.join();
        return isFine;
    }));
    EXPECT_EQ(readFile(board.file("settings")), "key=49\n");
}

} // namespace
