#include "BoardDirectory.h"
#include "Files.h"
#include "Namespaces.h"
#include "OtherUser.h"
#include "SystemCalls.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <set>

#include <sys/stat.h>

namespace
{

using systemcalls::hooks;

const std::string system = "/var/lib/bsp/board";

class BoardDirectory : public testing::Test
{
protected:
    BoardDirectory()
    {
        beUser(1000);
        exist({});
        ::unsetenv("BSP_BOARD_DIR");
        ::setenv("XDG_STATE_HOME", "/the/state", 1);
        ::setenv("HOME", "/the/home", 1);
    }

    static void exist(const std::set<std::string>& directories)
    {
        hooks().access = [directories](const char* path, int /*mode*/) {
            return directories.count(path) == 1 ? 0 : systemcalls::fail(ENOENT);
        };
    }
    static void beUser(uid_t user)
    {
        hooks().geteuid = [user] { return user; };
    }
};

TEST_F(BoardDirectory, IsWhereItsOwnVariableSaysWhateverExists)
{
    ::setenv("BSP_BOARD_DIR", "/the/board", 1);
    EXPECT_EQ(boarddirectory::path(), "/the/board");
    exist({"/the/state/bsp/board/", "/the/home/.local/state/bsp/board/", system + '/'});
    EXPECT_EQ(boarddirectory::path(), "/the/board");
}

TEST_F(BoardDirectory, IsElseTheFirstThatExists)
{
    exist({"/the/state/bsp/board/", "/the/home/.local/state/bsp/board/", system + '/'});
    EXPECT_EQ(boarddirectory::path(), "/the/state/bsp/board");
    exist({"/the/home/.local/state/bsp/board/", system + '/'});
    EXPECT_EQ(boarddirectory::path(), "/the/home/.local/state/bsp/board");
    exist({system + '/'});
    EXPECT_EQ(boarddirectory::path(), system);
}

TEST_F(BoardDirectory, IsTheUsersOwnWhenNoneExists)
{
    EXPECT_EQ(boarddirectory::path(), "/the/state/bsp/board");
    ::unsetenv("XDG_STATE_HOME");
    EXPECT_EQ(boarddirectory::path(), "/the/home/.local/state/bsp/board");
    ::unsetenv("HOME");
    EXPECT_EQ(boarddirectory::path(), system);
}

TEST_F(BoardDirectory, IsTheSystemsForRootWhenNoneExists)
{
    beUser(0);
    EXPECT_EQ(boarddirectory::path(), system);
    exist({"/the/home/.local/state/bsp/board/"});
    EXPECT_EQ(boarddirectory::path(), "/the/home/.local/state/bsp/board");
}

TEST_F(BoardDirectory, TakesAnEmptyVariableAsUnset)
{
    ::setenv("BSP_BOARD_DIR", "", 1);
    EXPECT_EQ(boarddirectory::path(), "/the/state/bsp/board");
    ::setenv("XDG_STATE_HOME", "", 1);
    EXPECT_EQ(boarddirectory::path(), "/the/home/.local/state/bsp/board");
    ::setenv("HOME", "", 1);
    EXPECT_EQ(boarddirectory::path(), system);
}

TEST_F(BoardDirectory, IsTheSystemsForAProgramWithRaisedRights)
{
    ::setenv("BSP_BOARD_DIR", "/the/board", 1);
    exist({"/the/state/bsp/board/", "/the/home/.local/state/bsp/board/"});
    hooks().secure_getenv = [](const char* /*name*/) { return static_cast<char*>(nullptr); };
    EXPECT_EQ(boarddirectory::path(), system);
}

/** What the program says that runs as another user, with the mode that its file has. */
std::string pathForOther(const std::string& program, mode_t mode)
{
    EXPECT_EQ(::chmod(program.c_str(), mode), 0);
    testsupport::Program run = testsupport::programAt(program);
    run.environment = {{"BSP_BOARD_DIR", "/the/board"}};
    run.prepare = testsupport::becomeOrdinaryUser;
    return run.run().out;
}

TEST_F(BoardDirectory, IsTheSystemsForAProgramThatIsItsOwnersForAll)
{
    const std::string emulator = BSP_TEST_EMULATOR;
    if (!emulator.empty()) {
        GTEST_SKIP() << "the kernel raises no rights of a program in an emulator";
    }
    if (::getuid() != 0) {
        GTEST_SKIP() << "only root can start a program of its own as another user";
    }
    const testsupport::TemporaryDirectory directory;
    std::filesystem::permissions(directory.path(), std::filesystem::perms(0755));
    if (!testsupport::programsGetRightsIn(directory.path())) {
        GTEST_SKIP() << (testsupport::haveNamespaces() ? "" : testsupport::NoNamespaces)
                     << "no program gets rights here that its caller lacks";
    }
    const std::string program = directory.file("program");
    std::filesystem::copy_file(BOARD_PATH, program);
    if (!testsupport::canBeReachedByOthers(directory.path())) {
        GTEST_SKIP() << "other users cannot enter the directory for temporary files";
    }
    EXPECT_EQ(pathForOther(program, 0755), "/the/board\n");
    EXPECT_EQ(pathForOther(program, 04755), system + '\n');
}

TEST_F(BoardDirectory, HasItsEntriesDirectlyInIt)
{
    ::setenv("BSP_BOARD_DIR", "/the/board", 1);
    EXPECT_EQ(boarddirectory::entryPath("eeprom"), "/the/board/eeprom");
}

TEST_F(BoardDirectory, NamesItsEntriesWithoutPaths)
{
    for (const char* name : {"eeprom", "top.dtcm0", "...", ".hidden", " ", "a\\b"}) {
        EXPECT_TRUE(boarddirectory::isEntryName(name)) << name;
    }
    for (const std::string& name :
         {std::string(), std::string("."), std::string(".."), std::string("/"), std::string("a/b"),
          std::string("/eeprom"), std::string("eeprom/"), std::string("a\0b", 3)})
    {
        EXPECT_FALSE(boarddirectory::isEntryName(name)) << name;
    }
}

} // namespace
