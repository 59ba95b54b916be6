#include "Board.h"
#include "Namespaces.h"
#include "NxuConfig.h"
#include "OtherUser.h"
#include "Sandbox.h"
#include "SettingsChange.h"
#include "Thrown.h"

#include <gmock/gmock.h>

#include <chrono>
#include <functional>

#include <sys/stat.h>
#include <unistd.h>

namespace
{

using os::bsp::NxuConfig;
using namespace testsupport;

class ConfigFaults : public testing::Test
{
protected:
    ConfigFaults() : file(board.file("settings")) {}

    std::string cannotRead(const std::string& why) const
    {
        return "cannot read the configuration store " + file + ": " + why;
    }

    /** What reading a key throws. */
    std::string errorOfGet()
    {
        return thrownBy<std::runtime_error>([this] { config.get("key"); });
    }

    const Board board;
    const std::string file;
    NxuConfig config;
};

TEST_F(ConfigFaults, AreNamedWithTheLine)
{
    const std::string text = "# settings\nkey=value\nword\n";
    board.write("settings", text);
    EXPECT_EQ(errorOfGet(), cannotRead("line 3: not of the form key=value"));
    EXPECT_FALSE(config.set("key", "value"));
    EXPECT_FALSE(config.clear("key"));
    EXPECT_FALSE(config.clear("none"));
    EXPECT_EQ(readFile(file), text);
}

TEST_F(ConfigFaults, AreNamedWhenTheFileIsTooLarge)
{
    const std::string text = std::string(1024 * 1024, '#');
    board.write("settings", text);
    EXPECT_EQ(config.get("key"), "");
    board.write("settings", text + '#');
    EXPECT_EQ(errorOfGet(), cannotRead("larger than 1048576 bytes"));
    EXPECT_FALSE(config.set("key", "value"));
    EXPECT_EQ(readFile(file), text + '#');
}

TEST_F(ConfigFaults, NeverEndTheProcessWhateverByteIsDamaged)
{
    EXPECT_TRUE(config.set("key", "value \\\n"));
    EXPECT_TRUE(config.set("other", "1"));
    const std::string whole = readFile(file);
    for (std::size_t place = 0; place < whole.size(); ++place) {
        for (int byte = 0; byte < 256; byte += 3) {
            std::string damaged = whole;
            damaged[place] = static_cast<char>(byte);
            board.write("settings", damaged);
            const std::string answer = errorOfGet();
            EXPECT_TRUE(answer == "nothing" || answer.rfind(cannotRead("line "), 0) == 0) << answer;
        }
        ASSERT_EQ(::truncate(file.c_str(), static_cast<off_t>(place)), 0);
        errorOfGet();
    }
}

TEST_F(ConfigFaults, EndWithTheirCause)
{
    board.write("settings", "word");
    EXPECT_EQ(errorOfGet(), cannotRead("line 1: not of the form key=value"));
    board.write("settings", "key=value");
    EXPECT_EQ(config.get("key"), "value");
}

TEST_F(ConfigFaults, AreNamedWhenThereIsAStoreOfAnEarlierVersion)
{
    const std::string former = board.file("config.mdb");
    board.write("config.mdb", "database");
    EXPECT_EQ(errorOfGet(),
              cannotRead("there is a " + former +
                         " of an earlier version; write its values as key=value lines into " +
                         file + " and remove it"));
    EXPECT_FALSE(config.set("key", "value"));
    EXPECT_FALSE(config.clear("key"));
    EXPECT_FALSE(board.has("settings"));
    board.write("settings", "key=value\n");
    EXPECT_EQ(config.get("key"), "value");
    EXPECT_TRUE(config.set("key", "other"));
    EXPECT_EQ(readFile(former), "database");
}

TEST_F(ConfigFaults, AreNamedWhenTheStoreIsNoFile)
{
    std::filesystem::create_directory(file);
    EXPECT_EQ(errorOfGet(), cannotRead("not a regular file"));
    EXPECT_FALSE(config.set("key", "value"));
    std::filesystem::remove(file);
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    EXPECT_EQ(errorOfGet(), cannotRead("not a regular file"));
    EXPECT_FALSE(config.set("key", "value"));
    std::filesystem::remove(file);
    std::filesystem::create_symlink("/dev/zero", file);
    EXPECT_EQ(errorOfGet(), cannotRead("not a regular file"));
    EXPECT_FALSE(config.set("key", "value"));
}

TEST_F(ConfigFaults, AreNamedWhenTheBoardDirectoryIsAFile)
{
    board.write("file", "");
    ::setenv("BSP_BOARD_DIR", board.file("file").c_str(), 1);
    EXPECT_EQ(errorOfGet(), "cannot read the configuration store " + board.file("file") +
                                "/settings: cannot open: Not a directory");
    EXPECT_FALSE(config.set("key", "value"));
    EXPECT_FALSE(config.clear("key"));
}

TEST_F(ConfigFaults, DoNotIncludeAMissingBoardDirectory)
{
    ::setenv("BSP_BOARD_DIR", board.file("missing").c_str(), 1);
    EXPECT_EQ(config.get("key"), "");
    EXPECT_TRUE(config.clear("key"));
    EXPECT_FALSE(config.set("key", "value"));
    EXPECT_TRUE(board.isEmpty());
}

TEST_F(ConfigFaults, DoNotReplaceALinkToNowhere)
{
    ASSERT_EQ(::symlink("nowhere", file.c_str()), 0);
    EXPECT_EQ(config.get("key"), "");
    EXPECT_FALSE(config.set("key", "value"));
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_FALSE(board.has("nowhere"));
}

/** Boards on file systems that are read-only or full. */
class ConfigMounts : public ConfigFaults
{
protected:
    void SetUp() override
    {
        if (!haveNamespaces()) {
            GTEST_SKIP() << NoNamespaces << "the board needs a mount of its own";
        }
    }

    /** Runs the client with these mounts. */
    static Outcome client(const std::vector<std::string>& mounts,
                          const std::vector<std::string>& arguments)
    {
        return sandboxed(mounts, BOARD_CLIENT, arguments).run();
    }
};

TEST_F(ConfigMounts, OnAReadOnlyBoardLeaveItReadable)
{
    board.write("register", "abcd");
    EXPECT_TRUE(config.set("key", "value"));
    const std::string before = readFile(file);
    EXPECT_EQ(client({"--ro-bind", board.path(), board.path()},
                     {"get", "key", "set", "key", "other", "clear", "key", "clear", "none", "get",
                      "key", "get", "none", "register", "register"}),
              answer("[value]\nfalse\nfalse\ntrue\n[value]\n[]\n1684234849\n"));
    EXPECT_EQ(readFile(file), before);
}

TEST_F(ConfigMounts, OnAReadOnlyBoardMakeNoStore)
{
    EXPECT_EQ(client({"--ro-bind", board.path(), board.path()},
                     {"get", "key", "set", "key", "value", "clear", "key"}),
              answer("[]\nfalse\ntrue\n"));
    EXPECT_TRUE(board.isEmpty());
}

TEST_F(ConfigMounts, OnAFullDiskKeepTheOldValue)
{
    const std::string many(20000, 'x');
    EXPECT_EQ(client({"--size", "65536", "--tmpfs", board.path()},
                     {"set", "key", "old", "fill", board.file("filler"), "set", "key", many, "get",
                      "key", "set", "other", many, "get", "other", "get", "key"}),
              answer("true\nfull\nfalse\n[old]\nfalse\n[]\n[old]\n"));
}

TEST_F(ConfigMounts, OnAFullDiskMakeNoStore)
{
    EXPECT_EQ(client({"--size", "65536", "--tmpfs", board.path()},
                     {"fill", board.file("filler"), "set", "key", "value", "get", "key", "list",
                      board.path()}),
              answer("full\nfalse\n[]\nfiller \n"));
}

/** A user who may not do everything. */
class ConfigOfRoot : public ConfigFaults
{
protected:
    void SetUp() override
    {
        if (::geteuid() != 0) {
            GTEST_SKIP() << "only root has another user's files to make";
        }
        std::filesystem::permissions(board.path(), std::filesystem::perms(0755));
        if (!canBeReachedByOthers(board.path())) {
            GTEST_SKIP() << "other users cannot enter the directory for temporary files";
        }
    }

    /** What the work in a process of another user returns. */
    static bool asAnother(const std::function<bool()>& work)
    {
        return holdsInCopy([&work] {
            becomeOrdinaryUser();
            return work();
        });
    }

    void giveTheBoardAway() const
    {
        ASSERT_EQ(::chown(board.path().c_str(), OrdinaryUser, OrdinaryUser), 0);
    }
};

TEST_F(ConfigOfRoot, CanBeReadByAnother)
{
    EXPECT_TRUE(config.set("key", "value"));
    EXPECT_TRUE(asAnother([&] {
        return config.get("key") == "value" && !config.set("key", "other") &&
               !config.clear("key") && config.get("key") == "value";
    }));
    EXPECT_EQ(readFile(file), "key=value\n");
}

TEST_F(ConfigOfRoot, CannotBeMadeByAnother)
{
    EXPECT_TRUE(asAnother([&] {
        return config.get("key").empty() && !config.set("key", "value") &&
               config.get("key").empty();
    }));
    EXPECT_TRUE(board.isEmpty());
}

TEST_F(ConfigOfRoot, SaysWhyAnotherCannotReadIt)
{
    EXPECT_TRUE(config.set("key", "value"));
    std::filesystem::permissions(file, std::filesystem::perms(0600));
    EXPECT_TRUE(asAnother([&] {
        return errorOfGet() == cannotRead("cannot open: Permission denied") && !config.clear("key");
    }));
}

TEST_F(ConfigOfRoot, IsNotReplacedByAnotherWhoOwnsTheDirectoryAlone)
{
    EXPECT_TRUE(config.set("key", "value"));
    giveTheBoardAway();
    EXPECT_TRUE(asAnother([&] { return !config.set("key", "other"); }));
    EXPECT_EQ(readFile(file), "key=value\n");
}

TEST_F(ConfigOfRoot, StaysTheUsersWhenRootChangesIt)
{
    giveTheBoardAway();
    EXPECT_TRUE(asAnother([&] { return config.set("key", "value"); }));
    EXPECT_TRUE(config.set("key", "root's"));
    EXPECT_TRUE(
        asAnother([&] { return config.get("key") == "root's" && config.set("key", "user's"); }));
    EXPECT_EQ(readFile(file), "key=user's\n");
}

TEST_F(ConfigOfRoot, NamesALockThatAnotherMayNotOpen)
{
    giveTheBoardAway();
    EXPECT_TRUE(asAnother([&] { return config.set("key", "value"); }));
    board.write("settings.lock", "");
    std::filesystem::permissions(board.file("settings.lock"), std::filesystem::perms(0200));
    EXPECT_TRUE(asAnother([&] {
        const settings::Deadline soon(std::chrono::milliseconds(10));
        const std::string thrown = thrownBy<std::runtime_error>([&] {
            settings::change(
                file, [](settings::SettingsText& text) { text.set("key", "other"); }, soon);
        });
        return thrown == "cannot open settings.lock: Permission denied";
    }));
    EXPECT_EQ(readFile(file), "key=value\n");
    // Who may open it goes on with it.
    EXPECT_TRUE(config.set("key", "root's"));
    EXPECT_FALSE(board.has("settings.lock"));
}

TEST_F(ConfigOfRoot, IsSharedByThoseWhoMayWriteFileAndDirectory)
{
    EXPECT_TRUE(config.set("key", "value"));
    ASSERT_EQ(::chmod(file.c_str(), 0666), 0);
    std::filesystem::permissions(board.path(), std::filesystem::perms(0777));
    EXPECT_TRUE(asAnother([&] { return config.set("key", "other"); }));
    EXPECT_EQ(readFile(file), "key=other\n");
    EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms(0666));
    EXPECT_TRUE(config.set("key", "value"));
}

TEST_F(ConfigOfRoot, KeepsThoseOutWhomAGroupKeptOut)
{
    EXPECT_TRUE(config.set("key", "value"));
    ASSERT_EQ(::chmod(file.c_str(), 0606), 0);
    std::filesystem::permissions(board.path(), std::filesystem::perms(0777));
    // The group's file would be the other user's group's.
    EXPECT_TRUE(asAnother([&] { return !config.set("key", "other"); }));
    EXPECT_EQ(readFile(file), "key=value\n");
}

} // namespace
