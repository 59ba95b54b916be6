#include "Board.h"
#include "NxuConfig.h"
#include "Sandbox.h"

#include <gmock/gmock.h>

#include <sys/stat.h>
#include <unistd.h>

namespace
{

using os::bsp::NxuConfig;
using testsupport::Board;
using testsupport::Outcome;
using testsupport::Program;
using testsupport::readFile;

constexpr uid_t OrdinaryUser = 65534;

class ConfigFaults : public testing::Test
{
protected:
    ConfigFaults() : file(board.file("config.mdb")) {}

    std::string cannotRead(const std::string& why) const
    {
        return "cannot read the configuration store " + file + ": " + why;
    }

    /** What reading a key throws. */
    std::string errorOfGet()
    {
        try {
            return "none: " + config.get("key");
        } catch (const std::runtime_error& error) {
            return error.what();
        }
    }

    /** Runs the client on this board. */
    static Outcome client(const std::vector<std::string>& mounts,
                          const std::vector<std::string>& arguments)
    {
        return testsupport::sandboxed(mounts, BOARD_CLIENT, arguments).run();
    }

    const Board board;
    const std::string file;
    NxuConfig config;
};

TEST_F(ConfigFaults, AreNamedWhenTheFileIsNoStore)
{
    board.write("config.mdb", std::string(2000000, 'x'));
    EXPECT_EQ(errorOfGet(), cannotRead("cannot open: MDB_INVALID: File is not an LMDB file"));
    EXPECT_FALSE(config.set("key", "value"));
    EXPECT_FALSE(config.clear("key"));
    EXPECT_EQ(readFile(file), std::string(2000000, 'x'));
}

TEST_F(ConfigFaults, AreNamedWhenTheFileIsCutOff)
{
    for (const std::size_t size : {0U, 100U, 4096U, 8192U, 1048575U}) {
        EXPECT_TRUE(config.set("key", "value"));
        ASSERT_EQ(::truncate(file.c_str(), static_cast<off_t>(size)), 0);
        EXPECT_EQ(errorOfGet(), cannotRead("damaged: it was cut off"));
        EXPECT_FALSE(config.set("key", "other"));
        EXPECT_FALSE(config.clear("key"));
        EXPECT_EQ(std::filesystem::file_size(file), size);
        std::filesystem::remove(file);
    }
}

TEST_F(ConfigFaults, EndWithTheirCause)
{
    EXPECT_TRUE(config.set("key", "value"));
    const std::string whole = readFile(file);
    ASSERT_EQ(::truncate(file.c_str(), 0), 0);
    EXPECT_EQ(errorOfGet(), cannotRead("damaged: it was cut off"));
    board.write("config.mdb", whole);
    EXPECT_EQ(config.get("key"), "value");
}

TEST_F(ConfigFaults, AreNamedWhenTheStoreIsNoFile)
{
    std::filesystem::create_directory(file);
    EXPECT_EQ(errorOfGet(), cannotRead("cannot open: Is a directory"));
    EXPECT_FALSE(config.set("key", "value"));
    std::filesystem::remove(file);
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    EXPECT_EQ(errorOfGet(), cannotRead("not a regular file"));
    EXPECT_FALSE(config.set("key", "value"));
}

TEST_F(ConfigFaults, AreNamedWhenTheBoardDirectoryIsAFile)
{
    board.write("file", "");
    ::setenv("BSP_BOARD_DIR", board.file("file").c_str(), 1);
    EXPECT_EQ(errorOfGet(), "cannot read the configuration store " + board.file("file") +
                                "/config.mdb: cannot open: Not a directory");
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

TEST_F(ConfigFaults, OnAReadOnlyBoardLeaveItReadable)
{
    board.write("register", "abcd");
    EXPECT_TRUE(config.set("key", "value"));
    const std::string before = readFile(file);
    const Outcome outcome = client({"--ro-bind", board.path(), board.path()},
                                   {"get", "key", "set", "key", "other", "clear", "key", "clear",
                                    "none", "get", "key", "get", "none", "register", "register"});
    EXPECT_EQ(outcome.out, "[value]\nfalse\nfalse\ntrue\n[value]\n[]\n1684234849\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(readFile(file), before);
}

TEST_F(ConfigFaults, OnAReadOnlyBoardMakeNoStore)
{
    const Outcome outcome = client({"--ro-bind", board.path(), board.path()},
                                   {"get", "key", "set", "key", "value", "clear", "key"});
    EXPECT_EQ(outcome.out, "[]\nfalse\ntrue\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_TRUE(board.isEmpty());
}

TEST_F(ConfigFaults, OnAFullDiskKeepTheOldValue)
{
    const std::string many(20000, 'x');
    const Outcome outcome =
        client({"--size", "65536", "--tmpfs", board.path()},
               {"set", "key", "old", "fill", board.file("filler"), "set", "key", many, "get", "key",
                "set", "other", many, "get", "other", "get", "key"});
    EXPECT_EQ(outcome.out, "true\nfull\nfalse\n[old]\nfalse\n[]\n[old]\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0);
}

TEST_F(ConfigFaults, OnAFullDiskMakeNoStore)
{
    for (const char* size : {"4096", "8192"}) {
        const Outcome outcome = client({"--size", size, "--tmpfs", board.path()},
                                       {"set", "key", "value", "get", "key", "list", board.path()});
        EXPECT_EQ(outcome.out, "false\n[]\nnothing\n") << size;
        EXPECT_EQ(outcome.err, "") << size;
    }
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
    }

    static Outcome clientOfAnother(const std::vector<std::string>& arguments)
    {
        Program program{};
        program.path = BOARD_CLIENT;
        program.arguments = arguments;
        program.prepare = [] {
            if (::setgid(OrdinaryUser) != 0 || ::setuid(OrdinaryUser) != 0) {
                ::_exit(1);
            }
        };
        return program.run();
    }
};

TEST_F(ConfigOfRoot, CanBeReadByAnother)
{
    EXPECT_TRUE(config.set("key", "value"));
    const Outcome outcome =
        clientOfAnother({"get", "key", "set", "key", "other", "clear", "key", "get", "key"});
    EXPECT_EQ(outcome.out, "[value]\nfalse\nfalse\n[value]\n");
    EXPECT_EQ(outcome.err, "");
}

TEST_F(ConfigOfRoot, CannotBeMadeByAnother)
{
    const Outcome outcome = clientOfAnother({"get", "key", "set", "key", "value", "get", "key"});
    EXPECT_EQ(outcome.out, "[]\nfalse\n[]\n");
    EXPECT_TRUE(board.isEmpty());
}

TEST_F(ConfigOfRoot, SaysWhyAnotherCannotReadIt)
{
    EXPECT_TRUE(config.set("key", "value"));
    std::filesystem::permissions(file, std::filesystem::perms(0600));
    const Outcome outcome = clientOfAnother({"get", "key", "clear", "key"});
    EXPECT_EQ(outcome.out, cannotRead("cannot open: Permission denied") + "\nfalse\n");
    EXPECT_EQ(outcome.err, "");
}

} // namespace
