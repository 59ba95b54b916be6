#include "DiagTest.h"
#include "Namespaces.h"

#include <chrono>
#include <thread>

#include <sys/stat.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using namespace testing;

const std::string EndAndRepair = ". Cure: end the programs that use the store, then: "
                                 "bsp-diag repair --yes DtcmDbSharedSem DtcmSync";

class Locks : public DiagTest
{
protected:
    /** Leaves the names as a killed first program does. */
    void leaveNames() const { StoreUser(board(), {"open"}).kill(); }
};

TEST_F(Locks, AreNotFoundOnAHealthyBoard)
{
    expectFindings({});
    const StoreUser first(board(), {"slot", "5", "object", "LINK"});
    const StoreUser second(board(), {"object", "OTHER"});
    expectFindings({});
}

TEST_F(Locks, NamesASemaphoreWhoseHolderWasKilledAndTheCure)
{
    if (const std::string reason = unseenProcesses(); !reason.empty()) {
        GTEST_SKIP() << reason;
    }
    StoreUser holder(board(), {"open", "hold"});
    const StoreUser other(board(), {});
    holder.kill();
    testsupport::Program query = tool("bsp", {"getSlotId"});
    const pid_t waiting = query.start();
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_EQ(::waitpid(waiting, nullptr, WNOHANG), 0) << "it does not wait";

    const auto begin = std::chrono::steady_clock::now();
    const Words lines = findings();
    const auto duration = std::chrono::steady_clock::now() - begin;
    EXPECT_THAT(lines, ElementsAre("semaphore-held: the semaphore of the warm area is held. "
                                   "Evidence: /dev/shm/sem.DtcmDbSharedSem, " +
                                   Names +
                                   ": 0 at every look, 1 waiting; mapped by PROCESS (N, since "
                                   "TIME). Follows: every operation on the warm area waits, in "
                                   "every program; getSlotId hangs" +
                                   EndAndRepair));
    if (std::string(BSP_TEST_EMULATOR).empty()) {
        EXPECT_LT(duration, std::chrono::seconds(1));
    }

    // The cure, word for word; while the program waits it is refused.
    const Words cure{"repair", "--yes", "DtcmDbSharedSem", "DtcmSync"};
    EXPECT_EQ(diag(cure).run().status, 1);
    ::kill(waiting, SIGKILL);
    testsupport::waitFor(waiting);
    EXPECT_EQ(diag(cure).run().status, 0);
    expectFindings({});
    EXPECT_EQ(tool("bsp", {"getSlotId"}).run().out, "-1\n");
}

TEST_F(Locks, NamesASemaphoreThatALivingProcessHolds)
{
    const StoreUser holder(board(), {"open", "hold"});
    EXPECT_THAT(names(), ElementsAre("semaphore-held"));
}

TEST_F(Locks, NamesWhatNobodyUses)
{
    if (const std::string reason = unseenProcesses(); !reason.empty()) {
        GTEST_SKIP() << reason;
    }
    leaveNames();
    expectFindings({"semaphore-unused: no living process uses the semaphore of the warm area. "
                    "Evidence: /dev/shm/sem.DtcmDbSharedSem, " +
                        Names +
                        ". Follows: the program that made it was killed: nobody decides about the "
                        "area again, and the next programs take it as it is, held or not. Cure: "
                        "bsp-diag repair --yes DtcmDbSharedSem DtcmSync",
                    "mutexes-unused: no living process uses the mutexes of the blocks. Evidence: "
                    "/dev/shm/DtcmSync, " +
                        Names +
                        ". Follows: the program that made them was killed: the next ones take "
                        "them as they are, held or not. Cure: bsp-diag repair --yes "
                        "DtcmDbSharedSem DtcmSync"});
}

TEST_F(Locks, NamesModesThatAUmaskHasCut)
{
    const StoreUser user(board(), {"open"});
    ::chmod(Semaphore, 0644);
    ::chmod(Mutexes, 0600);
    const Words lines = findings();
    EXPECT_THAT(namesIn(lines), ElementsAre("semaphore-mode", "mutexes-mode"));
    EXPECT_THAT(lines.at(0), HasSubstr(Names + ", mode 0644. Follows"));
    EXPECT_THAT(lines.at(1), HasSubstr(Names + ", mode 0600. Follows"));
}

TEST_F(Locks, NamesTwoGenerationsOfTheNames)
{
    if (!testsupport::haveNamespaces()) {
        GTEST_SKIP() << testsupport::NoNamespaces << "below proot a file without a name is another";
    }
    StoreUser first(board(), {"open"});
    const StoreUser second(board(), {"open"});
    first.end();
    EXPECT_THAT(names(), ElementsAre("semaphore-former", "mutexes-former"));
    const StoreUser third(board(), {"open"});
    expectFindings(
        {"semaphore-former: living processes use a semaphore that has lost its name. Evidence: "
         "without a name: PROCESS (N, since TIME); of that name: PROCESS (N, since TIME). "
         "Follows: old and new programs do not exclude each other on the warm area. Cure: "
         "restart PROCESS (N, since TIME)",
         "mutexes-former: living processes use mutexes that have lost their name. Evidence: "
         "without a name: PROCESS (N, since TIME); of that name: PROCESS (N, since TIME). "
         "Follows: old and new programs do not exclude each other on the objects. Cure: restart "
         "PROCESS (N, since TIME)"});
}

TEST_F(Locks, NamesTheMakerOfASemaphoreThatWasRemoved)
{
    if (!testsupport::haveNamespaces()) {
        GTEST_SKIP() << testsupport::NoNamespaces << "below proot a file without a name is another";
    }
    const StoreUser maker(board(), {"open"});
    fs::remove(Semaphore);
    fs::remove(Mutexes);
    EXPECT_THAT(names(), ElementsAre("semaphore-former", "mutexes-former"));
}

TEST_F(Locks, TakesNoGenerationOfAnotherBoardForItsOwn)
{
    const std::string other = file("other");
    fs::copy(board(), other);
    StoreUser first(other, {"open"});
    const StoreUser second(other, {"open"});
    first.end();
    expectFindings({});
}

TEST_F(Locks, NamesNamesOfAnotherSize)
{
    const StoreUser user(board(), {"open"});
    const bool is64 = sizeof(void*) == 8;
    fs::resize_file(Mutexes, 0);
    fs::resize_file(Mutexes, is64 ? 768 : 1280);
    fs::resize_file(Semaphore, 5);
    const Words lines = findings();
    EXPECT_THAT(namesIn(lines), ElementsAre("semaphore-size", "mutexes-size"));
    EXPECT_THAT(lines.at(0), HasSubstr(", 5 bytes instead of "));
    EXPECT_THAT(lines.at(1),
                HasSubstr(is64 ? ", 768 bytes instead of 1280: those of 32-bit programs. Follows"
                               : ", 1280 bytes instead of 768: those of 64-bit programs. Follows"));
    fs::resize_file(Mutexes, 0);
    EXPECT_THAT(findings().at(1), HasSubstr(", 0 bytes instead of "));
}

TEST_F(Locks, NamesWhoHoldsTheMutexOfABlock)
{
    const StoreUser user(board(), {"object", "FIRST"});
    StoreUser holder(board(), {"lock", "LINK"});
    const std::string id = std::to_string(holder.id());
    expectFindings({"mutex-held: a living thread holds the mutex of a block. Evidence: block 2 "
                    "(LINK), at every look: thread " +
                    id +
                    " of PROCESS (N, since TIME). Follows: who locks the object waits for it. "
                    "Cure: see why that thread does not go on; end its process only where the "
                    "state of the object does not matter, since the mutex stays held"});
    holder.kill();
    expectFindings({"mutex-dead: the mutex of a block is held by no living thread. "
                    "Evidence: block 2 (LINK): thread " +
                    id +
                    ", which does not exist. Follows: who locks the object waits for "
                    "ever" +
                    EndAndRepair});
}

TEST_F(Locks, NamesWhoHoldsTheMutexOfTheSlotId)
{
    const StoreUser user(board(), {"slot", "5"});
    StoreUser holder(board(), {"lockslot"});
    const std::string id = std::to_string(holder.id());
    const std::string waits =
        ". Follows: getSlotId and setSlotId wait for ever, in every program. Cure: ";
    expectFindings({"slot-mutex-held: a living thread holds the mutex of the slot id. Evidence: at "
                    "every look: thread " +
                    id + " of PROCESS (N, since TIME)" + waits +
                    "see why that thread does not go on; when its process is ended, the mutex "
                    "stays held until a cold restart clears the area"});
    holder.kill();
    expectFindings({"slot-mutex-dead: the mutex of the slot id is held by no "
                    "living thread. Evidence: thread " +
                    id + ", which does not exist" + waits +
                    "restart the board cold, which clears the area"});
}

TEST_F(Locks, NamesASlotIdWhoseMutexWasHeldOverARestart)
{
    StoreUser holder(board(), {"slot", "5", "lockslot"});
    const std::string id = std::to_string(holder.id());
    holder.kill();
    fs::remove(Semaphore);
    fs::remove(Mutexes);
    expectFindings({"slot-mutex-before-restart: the mutex of the slot id was held when the board "
                    "restarted. Evidence: thread " +
                    id +
                    ", which does not exist; the last restart was of type Warm, and since then "
                    "nobody has used the store. Follows: getSlotId and setSlotId wait for ever, "
                    "in every program. Cure: restart the board cold, which clears the area"});
    setResetCause(0); // a cold one: the first program will clear the area
    expectFindings({});
}

TEST_F(Locks, TakesNoOtherProcessForAHolder)
{
    StoreUser holder(board(), {"slot", "5", "lockslot"});
    holder.kill();
    fs::remove(Semaphore);
    fs::remove(Mutexes);
    // The number is now that of this test.
    std::string area = testsupport::readFile(boardFile("top.dtcm0"));
    const std::size_t owner = 16 + alignof(pthread_mutex_t) + 8;
    area.replace(owner, 4, word(static_cast<std::uint32_t>(::getpid())));
    write("top.dtcm0", area);
    const Words lines = findings();
    EXPECT_THAT(namesIn(lines), ElementsAre("slot-mutex-before-restart"));
    EXPECT_THAT(lines.at(0), HasSubstr("thread " + std::to_string(::getpid()) +
                                       ", a number that is now of PROCESS (N, since TIME), which "
                                       "does not use the store; "));
}

TEST_F(Locks, NamesASlotIdOfAnotherWordSize)
{
    // The mutex of a program of the other word size: only its kind is not 0.
    const bool is64 = sizeof(void*) == 8;
    std::string object(48, '\0');
    object.replace(is64 ? 16 : 24, 4, word(0x80));
    putBlock(1, "SLOT", object);
    expectFindings({"slot-word-size: the object with the slot id was made by a program of another "
                    "word size. Evidence: block 1: " +
                    std::string(is64 ? "32-bit, programs here are 64-bit"
                                     : "64-bit, programs here are 32-bit") +
                    ". Follows: programs take other bytes for its mutex: they do not exclude each "
                    "other, or wait for ever. Cure: restart the board cold, which clears the "
                    "area"});
}

TEST_F(Locks, TakesNothing)
{
    const StoreUser user(board(), {"slot", "5", "object", "LINK"});
    const std::string before = testsupport::readFile(boardFile("top.dtcm0")) +
                               testsupport::readFile(Semaphore) + testsupport::readFile(Mutexes);
    expectFindings({});
    EXPECT_EQ(testsupport::readFile(boardFile("top.dtcm0")) + testsupport::readFile(Semaphore) +
                  testsupport::readFile(Mutexes),
              before);
}

TEST_F(Locks, CreatesNothing)
{
    expectFindings({});
    EXPECT_TRUE(fs::is_empty("/dev/shm"));
    fs::remove_all(board());
    EXPECT_EQ(diag({"check"}).run().status, 1);
    EXPECT_FALSE(fs::exists(board()));
    EXPECT_TRUE(fs::is_empty("/dev/shm"));
}

} // namespace
