#include "DiagTest.h"

namespace
{

namespace fs = std::filesystem;
using testing::MatchesRegex;
using testsupport::Outcome;

class Repair : public DiagTest
{
protected:
    void leaveNames() const { StoreUser(board(), {"open"}).kill(); }

    void expect(const testsupport::Program& program, const std::string& text, int status) const
    {
        const Outcome outcome = program.run();
        EXPECT_EQ(normal(outcome.out), text);
        EXPECT_EQ(outcome.err, "");
        EXPECT_EQ(outcome.status, status);
    }
};

TEST_F(Repair, SaysWhatItWouldDoAndDoesItWhenItIsMeant)
{
    if (const std::string reason = unseenProcesses(); !reason.empty()) {
        GTEST_SKIP() << reason;
    }
    leaveNames();
    expect(diag({"repair", "DtcmDbSharedSem", "/DtcmSync", "zImage_tmp"}),
           "DtcmDbSharedSem: would remove /dev/shm/sem.DtcmDbSharedSem; --yes does it\n"
           "DtcmSync: would remove /dev/shm/DtcmSync; --yes does it\n"
           "zImage_tmp: there is no /dev/shm/zImage_tmp\n",
           0);
    EXPECT_TRUE(fs::exists(Semaphore));
    expect(diag({"repair", "--yes", "DtcmDbSharedSem", "DtcmSync"}),
           "DtcmDbSharedSem: removed /dev/shm/sem.DtcmDbSharedSem\n"
           "DtcmSync: removed /dev/shm/DtcmSync\n",
           0);
    EXPECT_TRUE(fs::is_empty("/dev/shm"));
}

TEST_F(Repair, KeepsWhatALivingProcessUses)
{
    const StoreUser user(board(), {"open"});
    fs::remove(Semaphore);
    expect(diag({"repair", "--yes", "DtcmSync"}),
           "DtcmSync: kept, used by PROCESS (N, since TIME)\n", 1);
    EXPECT_TRUE(fs::exists(Mutexes));
}

TEST_F(Repair, KeepsWhatItCannotSeeTheUsersOf)
{
    if (const std::string reason = noOtherUser(); !reason.empty()) {
        GTEST_SKIP() << reason;
    }
    leaveNames();
    EXPECT_THAT(diagOfOrdinaryUser({"repair", "--yes", "DtcmSync"}).run().out,
                MatchesRegex("DtcmSync: kept, as [0-9]+ processes of other users cannot be looked "
                             "at; root may, or --ignore-unseen\n"));
    expect(diagOfOrdinaryUser({"repair", "--yes", "--ignore-unseen", "DtcmSync"}),
           "DtcmSync: kept, cannot remove /dev/shm/DtcmSync: Operation not permitted\n", 1);
    EXPECT_TRUE(fs::exists(Mutexes));
}

TEST_F(Repair, KnowsThreeNames)
{
    const Outcome outcome = diag({"repair", "--yes", "other"}).run();
    EXPECT_EQ(outcome.err, "bsp-diag: there is nothing to repair of the name 'other'; it can be "
                           "DtcmDbSharedSem, DtcmSync, zImage_tmp\n"
                           "Try 'bsp-diag repair --help'.\n");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(diag({"repair"}).run().err,
              "bsp-diag: NAME is required\nTry 'bsp-diag repair --help'.\n");
}

} // namespace
