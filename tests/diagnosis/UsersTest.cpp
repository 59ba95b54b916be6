// Who uses the shared names: those who can be seen, cannot be seen, or are no more.

#include "DiagTest.h"
#include "Namespaces.h"
#include "Sanitizers.h"

#include <filesystem>

#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class UsersOfNames : public DiagTest
{
protected:
    /** A status that bsp-diag does not have. */
    static constexpr int CannotMount = 125;

    void SetUp() override
    {
        DiagTest::SetUp();
        fs::permissions(board(), fs::perms(0777));
    }

    /** Puts a file system in the place of /proc, for this process alone; ends it where it cannot.
     */
    static void replaceProc(const char* type, const char* option)
    {
        if (::unshare(CLONE_NEWNS) != 0 ||
            ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            ::mount("none", "/proc", type, 0, option) != 0)
        {
            ::_exit(CannotMount);
        }
    }

    /** bsp-diag for somebody from whom the system hides other users' processes. */
    testsupport::Program diagWithHidden(Words words, const char* option) const
    {
        const testsupport::Program program = diagOfOrdinaryUser(std::move(words));
        return prepared(program, [becomeUser = program.prepare, option] {
            replaceProc("proc", option);
            becomeUser();
        });
    }
};

TEST_F(UsersOfNames, AreNotTakenForNobodyWhereTheyAreHidden)
{
    if (const std::string reason = noOtherUser(); !reason.empty()) {
        GTEST_SKIP() << reason;
    }
    const StoreUser user(board(), {"slot", "5", "lock", "LINK"});
    ASSERT_EQ(::chmod(boardFile("top.dtcm0").c_str(), 0666), 0);
    // As they are once a user's program has made them.
    constexpr uid_t ordinaryUser = 65534;
    for (const char* const name : {Semaphore, Mutexes}) {
        ASSERT_EQ(::chown(name, ordinaryUser, ordinaryUser), 0);
    }
    for (const char* const option : {"hidepid=1", "hidepid=2", "hidepid=4"}) {
        const testsupport::Outcome found = diagWithHidden({"check"}, option).run();
        if (found.status == CannotMount) {
            GTEST_SKIP() << testsupport::NoNamespaces << "cannot mount a /proc";
        }
        EXPECT_THAT(found.out, Not(HasSubstr("unused: "))) << option;
        EXPECT_THAT(found.out, Not(HasSubstr("mutex-dead: "))) << option;
        EXPECT_THAT(found.out, HasSubstr("mutex-held: ")) << option;
        EXPECT_THAT(found.out, HasSubstr("not looked at: what ")) << option;
        const testsupport::Outcome kept =
            diagWithHidden({"repair", "--yes", "DtcmSync", "DtcmDbSharedSem"}, option).run();
        EXPECT_THAT(kept.out, HasSubstr("DtcmSync: kept, as ")) << option;
        EXPECT_EQ(kept.status, 1) << option;
        EXPECT_TRUE(fs::exists(Mutexes) && fs::exists(Semaphore)) << option;
    }
    const testsupport::Outcome hidden = diagWithHidden({"check"}, "hidepid=2").run();
    EXPECT_THAT(hidden.out, HasSubstr("not looked at: what processes of other users have mapped, "
                                      "which are hidden here: root may look\n"));
    EXPECT_THAT(hidden.out, HasSubstr("at every look: thread " + std::to_string(user.id()) +
                                      " of a process that is hidden from this user. Follows"));
}

TEST_F(UsersOfNames, AreNotTakenForNobodyWhereNoneCanBeSeen)
{
    if (testsupport::isSanitized("address")) {
        GTEST_SKIP() << "the sanitizer cannot do without /proc";
    }
    StoreUser(board(), {"open"}).kill();
    const auto withoutProc = [this](Words words) {
        return prepared(diag(std::move(words)), [] { replaceProc("tmpfs", ""); }).run();
    };
    const testsupport::Outcome found = withoutProc({"check"});
    if (found.status == CannotMount) {
        GTEST_SKIP() << testsupport::NoNamespaces << "cannot mount a /proc";
    }
    EXPECT_EQ(found, (testsupport::Outcome{
                         "not looked at: who uses the shared names: there is nothing in /proc\n"
                         "nothing found\n",
                         "", 3}));
    EXPECT_EQ(withoutProc({"repair", "--yes", "DtcmSync"}),
              (testsupport::Outcome{"DtcmSync: kept, as it cannot be seen who uses it\n", "", 1}));
}

TEST_F(UsersOfNames, AreUsersWhenTheirFirstThreadHasEnded)
{
    if (!std::string(BSP_TEST_EMULATOR).empty()) {
        GTEST_SKIP() << "the emulator's first thread does not end";
    }
    const StoreUser user(board(), {"slot", "5", "leave"});
    expectFindings({});
    EXPECT_EQ(diag({"repair", "--yes", "DtcmSync"}).run().status, 1);
    EXPECT_TRUE(fs::exists(Mutexes));
}

TEST_F(UsersOfNames, AreNoHoldersWhenNobodyHasWaitedForTheirEnd)
{
    const StoreUser user(board(), {"object", "FIRST"});
    const StoreUser holder(board(), {"lock", "LINK"});
    holder.killUnnoticed();
    const Words lines = findings();
    EXPECT_THAT(namesIn(lines), ElementsAre("mutex-dead"));
    EXPECT_THAT(lines.at(0), HasSubstr("block 2 (LINK): thread " + std::to_string(holder.id()) +
                                       " of PROCESS (N, since TIME), which has ended. Follows"));
}

TEST_F(UsersOfNames, AreNotLookedForWhereThereIsSomethingElse)
{
    const auto expect = [this](const std::string& kind) {
        const std::string remove = " is " + kind + ". Follows: programs ";
        expectFindings({"semaphore-link: in the place of the semaphore of the warm area there is "
                        "something else. Evidence: /dev/shm/sem.DtcmDbSharedSem, " +
                            Names + remove +
                            "work on the warm area without any lock. Cure: remove "
                            "/dev/shm/sem.DtcmDbSharedSem",
                        "mutexes-link: in the place of the mutexes of the blocks there is "
                        "something else. Evidence: /dev/shm/DtcmSync, " +
                            Names + remove +
                            "have mutexes of their own, which exclude nobody, or crash when they "
                            "use them. Cure: remove /dev/shm/DtcmSync"});
        fs::remove(Semaphore);
        fs::remove(Mutexes);
    };
    fs::create_symlink("/etc/passwd", Semaphore);
    fs::create_symlink("/nowhere", Mutexes);
    expect("a symbolic link");
    ASSERT_EQ(::mkfifo(Semaphore, 0666), 0);
    ASSERT_EQ(::mkfifo(Mutexes, 0666), 0);
    expect("a pipe, socket or device");
    fs::create_directory(Semaphore);
    fs::create_directory(Mutexes);
    expect("a directory");
}

} // namespace
