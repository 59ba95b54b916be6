#include "AreaTest.h"

#include <cstdlib>

#include <sys/stat.h>

namespace
{

using namespace areatest;
using namespace testing;
using namespace warmboard;

/** Device calls and messages among the system calls, each with the semaphore's value. */
void noteEverything()
{
    fakedevices::dtcm().onOpen = [] { systemcalls::note("open device"); };
    fakedevices::control().onCreate = [] { systemcalls::note("ask for reset cause"); };
    recordingtrace::setObserver([](const recordingtrace::Message& message) {
        const int value = warmcalls::semaphore() == nullptr ? -1 : warmcalls::semaphoreValue();
        systemcalls::note(message.text + " at " + std::to_string(value));
    });
}

Lines initSlots()
{
    Lines lines;
    for (std::size_t i = 0; i < 32; ++i) {
        lines.push_back("pthread_mutex_init at " + std::to_string(i * sizeof(pthread_mutex_t)) +
                        " shared");
    }
    return lines;
}

TEST(Start, OfTheFirstProcess)
{
    useNxu4(Cold);
    noteEverything();
    WarmDatabase::getInstance();
    Lines expected = {
        "open device",
        mapArea,
        createSemaphore,
        "ask for reset cause",
        "clearDatabaseIfColdRestart(): COLD restart, clearing database. at 0",
        "logNamesOfUsedBlocks(): Max number of blocks available: 32 at 0",
        "sem_post",
        openSync,
        createSync,
        "ftruncate " + syncSize,
        mapSync,
    };
    const Lines slots = initSlots();
    expected.insert(expected.end(), slots.begin(), slots.end());
    EXPECT_EQ(systemcalls::take(), expected);
    EXPECT_EQ(warmcalls::semaphoreValue(), 1);
    EXPECT_THAT(fakedevices::dtcm().calls, ElementsAre("open top.dtcm0", "close 0"));
}

TEST(Start, OfAnotherProcess)
{
    useNxu4(Cold);
    const std::string contents = areaWith({{0, "KEPT"}});
    fillArea(contents);
    makeSharedNames(1);
    noteEverything();
    WarmDatabase::getInstance();
    EXPECT_THAT(systemcalls::take(), ElementsAre("open device", mapArea, createSemaphore,
                                                 openSemaphore, openSync, mapSync));
    EXPECT_EQ(warmcalls::semaphoreValue(), 1);
    EXPECT_EQ(area(), contents);
    EXPECT_EQ(testsupport::readFile("/dev/shm/DtcmSync").substr(0, 4), "mine");
}

TEST(Start, DoesNotTouchTheSemaphoreOfAProcessThatStillDecides)
{
    makeSharedNames(0);
    WarmDatabase::getInstance();
    EXPECT_EQ(warmcalls::semaphoreValue(), 0);
    EXPECT_THAT(systemcalls::take(), Not(Contains("sem_post")));
}

TEST(Start, HappensOnce)
{
    useNxu4(Warm);
    WarmDatabase& database = WarmDatabase::getInstance();
    systemcalls::take();
    EXPECT_EQ(&WarmDatabase::getInstance(), &database);
    EXPECT_THAT(systemcalls::take(), IsEmpty());
}

/** The descriptors that are open on the mutexes. */
std::vector<int> mutexesDescriptors()
{
    std::vector<int> descriptors;
    for (int fd = 0; fd < 64; ++fd) {
        char target[64] = {};
        const std::string link = "/proc/self/fd/" + std::to_string(fd);
        if (::readlink(link.c_str(), target, sizeof(target) - 1) > 0 &&
            std::string(target) == "/dev/shm/DtcmSync")
        {
            descriptors.push_back(fd);
        }
    }
    return descriptors;
}

TEST(Start, LeavesTheMutexesDescriptorOpen)
{
    useNxu4(Warm);
    WarmDatabase::getInstance();
    EXPECT_THAT(mutexesDescriptors(), SizeIs(1));
}

TEST(Start, KeepsTheFirstNumberBehindTheStandardStreamsForTheMutexes)
{
    // Another descriptor would cost two calls more.
    constexpr int First = STDERR_FILENO + 1;
    constexpr int Unused = 60;
    useNxu4(Warm);
    const int saved = ::fcntl(First, F_DUPFD_CLOEXEC, Unused);
    ::close(First);
    WarmDatabase::getInstance();
    EXPECT_THAT(mutexesDescriptors(), ElementsAre(First));
    if (saved != -1) {
        ::dup2(saved, First);
        ::close(saved);
    }
}

/** In a program that has closed a standard stream. */
class StartWithoutStream : public TestWithParam<int>
{
protected:
    /** The descriptors on the mutexes when the store is first used while the stream is closed. */
    static std::vector<int> start()
    {
        constexpr int Unused = 60;
        const int saved = ::fcntl(GetParam(), F_DUPFD_CLOEXEC, Unused);
        ::close(GetParam());
        WarmDatabase::getInstance();
        std::vector<int> descriptors = mutexesDescriptors();
        ::dup2(saved, GetParam());
        ::close(saved);
        return descriptors;
    }
};

TEST_P(StartWithoutStream, DoesNotTakeItsNumberForNewMutexes)
{
    useNxu4(Warm);
    EXPECT_THAT(start(), ElementsAre(Gt(STDERR_FILENO)));
}

TEST_P(StartWithoutStream, DoesNotTakeItsNumberForTheMutexesOfOthers)
{
    makeSharedNames(1);
    EXPECT_THAT(start(), ElementsAre(Gt(STDERR_FILENO)));
}

TEST_P(StartWithoutStream, TakesItsNumberWhereThereIsNoOther)
{
    warmboard::useNxu4(warmboard::Warm);
    systemcalls::hooks().fcntl = [](int fd, int command, void* argument) {
        const auto first = reinterpret_cast<std::intptr_t>(argument);
        return command == F_DUPFD_CLOEXEC && first == STDERR_FILENO + 1
                   ? systemcalls::fail(EMFILE)
                   : systemcalls::real().fcntl(fd, command, argument);
    };
    EXPECT_THAT(start(), ElementsAre(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(All, StartWithoutStream,
                         Values(STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO));

TEST(Start, GivesTheNamesTheModeThatTheUmaskLeaves)
{
    useNxu4(Warm);
    ::umask(027);
    WarmDatabase::getInstance();
    struct stat status = {};
    ASSERT_EQ(::stat("/dev/shm/sem.DtcmDbSharedSem", &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0640U);
    ASSERT_EQ(::stat("/dev/shm/DtcmSync", &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0640U);
}

/** Ends a process that has used the store; its system calls go to standard error. */
[[noreturn]] void useAndExit()
{
    WarmDatabase::getInstance();
    systemcalls::echo();
    std::exit(0); // NOLINT(concurrency-mt-unsafe): a process of one thread
}

TEST(ExitDeath, OfTheProcessThatMadeTheNames)
{
    useNxu4(Warm);
    EXPECT_EXIT(useAndExit(), ExitedWithCode(0),
                "^munmap 32768\nsem_close\nsem_unlink /DtcmDbSharedSem\nshm_unlink /DtcmSync\n$");
    EXPECT_NE(::access("/dev/shm/sem.DtcmDbSharedSem", F_OK), 0);
    EXPECT_NE(::access("/dev/shm/DtcmSync", F_OK), 0);
}

TEST(ExitDeath, OfAnotherProcess)
{
    makeSharedNames(1);
    EXPECT_EXIT(useAndExit(), ExitedWithCode(0), "^munmap 32768\nsem_close\n$");
    EXPECT_EQ(::access("/dev/shm/sem.DtcmDbSharedSem", F_OK), 0);
    EXPECT_EQ(::access("/dev/shm/DtcmSync", F_OK), 0);
}

TEST(ExitDeath, OfTheProcessThatMadeTheSemaphoreAlone)
{
    makeSharedNames(1);
    ASSERT_EQ(::sem_unlink("/DtcmDbSharedSem"), 0);
    useNxu4(Warm);
    EXPECT_EXIT(useAndExit(), ExitedWithCode(0),
                "^munmap 32768\nsem_close\nsem_unlink /DtcmDbSharedSem\n$");
    EXPECT_EQ(::access("/dev/shm/DtcmSync", F_OK), 0);
}

TEST(ExitDeath, WithAPrivateAreaAndNoSemaphore)
{
    fakedevices::dtcm().kind = fakedevices::Dtcm::Missing;
    systemcalls::queue("sem_open", {{-1, EACCES}});
    EXPECT_EXIT(useAndExit(), ExitedWithCode(0), "^munmap 32768\nshm_unlink /DtcmSync\n$");
}

} // namespace
