#include "BoardDirectory.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace
{

class BoardDirectory : public testing::Test
{
protected:
    BoardDirectory()
    {
        ::setenv("BSP_BOARD_DIR", "/the/board", 1);
        ::setenv("XDG_STATE_HOME", "/the/state", 1);
        ::setenv("HOME", "/the/home", 1);
    }
};

TEST_F(BoardDirectory, IsWhereItsOwnVariableSays)
{
    EXPECT_EQ(boarddirectory::path(), "/the/board");
}

TEST_F(BoardDirectory, IsElseBelowTheStateDirectory)
{
    ::unsetenv("BSP_BOARD_DIR");
    EXPECT_EQ(boarddirectory::path(), "/the/state/bsp/board");
}

TEST_F(BoardDirectory, IsElseBelowTheHomeDirectory)
{
    ::unsetenv("BSP_BOARD_DIR");
    ::unsetenv("XDG_STATE_HOME");
    EXPECT_EQ(boarddirectory::path(), "/the/home/.local/state/bsp/board");
}

TEST_F(BoardDirectory, IsElseTheSystems)
{
    ::unsetenv("BSP_BOARD_DIR");
    ::unsetenv("XDG_STATE_HOME");
    ::unsetenv("HOME");
    EXPECT_EQ(boarddirectory::path(), "/var/lib/bsp/board");
}

TEST_F(BoardDirectory, TakesAnEmptyVariableAsUnset)
{
    ::setenv("BSP_BOARD_DIR", "", 1);
    EXPECT_EQ(boarddirectory::path(), "/the/state/bsp/board");
    ::setenv("XDG_STATE_HOME", "", 1);
    EXPECT_EQ(boarddirectory::path(), "/the/home/.local/state/bsp/board");
    ::setenv("HOME", "", 1);
    EXPECT_EQ(boarddirectory::path(), "/var/lib/bsp/board");
}

TEST_F(BoardDirectory, HasItsEntriesDirectlyInIt)
{
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
