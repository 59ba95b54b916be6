#include "Namespaces.h"
#include "OtherUser.h"
#include "Program.h"
#include "SystemCalls.h"
#include "TraceTest.h"

#include <thread>
#include <utility>

#include <sys/stat.h>

namespace
{

using testing::SizeIs;

using TraceRights = testsupport::TraceTest;

TEST_F(TraceRights, LetTheEnvironmentSaySomethingWhenTheyAreTheStartersOwn)
{
    setLevels("*=7");
    EXPECT_EQ(levelOf("channel"), 7U);
    write("text", 7);
    EXPECT_THAT(lines(), SizeIs(1));
}

TEST_F(TraceRights, WhenRaisedLeaveTheEnvironmentUnheeded)
{
    systemcalls::hooks().secure_getenv = [](const char* /*name*/) {
        return static_cast<char*>(nullptr);
    };
    setLevels("*=7");
    EXPECT_EQ(levelOf("channel"), 3U);
    write("text");
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(TraceRights, WhenRaisedByTheSystemLeaveTheEnvironmentUnheeded)
{
    if (!std::string(BSP_TEST_EMULATOR).empty()) {
        GTEST_SKIP() << "under an emulator, programs do not get the rights of their files";
    }
    const std::string program = directory.file("program");
    std::filesystem::copy_file(TRACE_CLIENT, program);
    if (!testsupport::programsGetRightsIn(directory.path())) {
        GTEST_SKIP() << (testsupport::haveNamespaces() ? "" : testsupport::NoNamespaces)
                     << "programs do not get the rights of their files here";
    }
    // A group's rights: as another user, the program might not reach its libraries.
    constexpr gid_t OtherGroup = 65534;
    if (::chown(program.c_str(), ::getuid(), OtherGroup) != 0) {
        GTEST_SKIP() << "only root gives files to other groups";
    }
    const auto client = testsupport::programAt(program, {"channel", "1", "text"});
    for (const mode_t mode : {0755U, 02755U}) {
        std::filesystem::remove(file);
        ASSERT_EQ(::chmod(program.c_str(), mode), 0);
        EXPECT_EQ(client.run(), testsupport::answer());
        EXPECT_THAT(lines(), SizeIs(mode == 0755U ? 2 : 0));
    }
}

TEST_F(TraceRights, AreLookedAtByAProcessThatIsForkedMeanwhileToo)
{
    if (!std::string(BSP_TEST_EMULATOR).empty()) {
        GTEST_SKIP() << "the emulator itself can hang in a process forked beside other threads";
    }
    setLevels("bad");
    testing::internal::CaptureStderr();
    bool isRight = false;
    bool isForked = false;
    systemcalls::hooks().secure_getenv = [&](const char* name) {
        if (std::exchange(isForked, true)) {
            return systemcalls::real().secure_getenv(name);
        }
        std::thread([&] {
            isRight = testsupport::holdsInCopy([] {
                ::alarm(30);
                return levelOf("channel") == 3;
            });
        }).join();
        return systemcalls::real().secure_getenv(name);
    };
    EXPECT_EQ(levelOf("channel"), 3U);
    EXPECT_TRUE(isRight);
    const std::string report =
        "qeltrace: ignoring 'bad' in QELTRACE_LEVEL: not of the form CHANNEL=LEVEL\n";
    EXPECT_EQ(testing::internal::GetCapturedStderr(), report + report); // of either process
}

} // namespace
