// States of the system that a test cannot bring about for a whole program.

#include "Files.h"
#include "SystemCalls.h"
#include "findings/Subjects.h"
#include "findings/Texts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>

#include <sys/statvfs.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using namespace testing;

class SystemFindings : public Test
{
protected:
    void SetUp() override
    {
        setFreeBlocks(50);
        places.processes = directory("proc");
        places.sharedMemory = directory("shm");
        places.temporaryFiles = directory("tmp");
        places.loginSettings[0] = directory("etc");
        places.loginSettings[1] = directory("run");
        places.loginSettings[2] = directory("lib");
        fs::permissions(places.sharedMemory, fs::perms(01777));
        makeProcess(1, "init");
        setProtection("0");
    }

    ~SystemFindings() override { systemcalls::hooks() = {}; }

    static void setFreeBlocks(fsblkcnt_t free)
    {
        systemcalls::hooks().statvfs = [free](const char* path, struct statvfs* status) {
            const int result = systemcalls::real().statvfs(path, status);
            status->f_blocks = 100;
            status->f_bavail = free;
            return result;
        };
    }

    std::string directory(const std::string& name) const
    {
        fs::create_directories(m_directory.path() / name);
        return m_directory.file(name);
    }

    void makeProcess(int number, const std::string& name) const
    {
        const std::string place = "proc/" + std::to_string(number);
        testsupport::writeFile(directory(place) + "/stat",
                               std::to_string(number) + " (" + name +
                                   ") S 0 1 1 0 -1 4194560 1 1 1 1 1 1 1 1 20 0 1 0 100 1 1");
        testsupport::writeFile(directory(place) + "/maps", "");
    }

    void setProtection(const std::string& value) const
    {
        testsupport::writeFile(directory("proc/sys/fs") + "/protected_regular", value + '\n');
    }

    /** A shared name of that user. */
    void makeName(uid_t owner) const
    {
        const std::string path = places.sharedMemory + "/DtcmSync";
        testsupport::writeFile(path, "");
        ASSERT_EQ(::chown(path.c_str(), owner, owner), 0);
    }

    std::vector<std::string> found() const
    {
        const Evidence evidence(places, std::chrono::milliseconds(0));
        Diagnosis diagnosis;
        judgeSystem(evidence, diagnosis);
        std::vector<std::string> lines;
        for (const Finding& finding : diagnosis.findings) {
            lines.push_back(lineOf(finding));
        }
        return lines;
    }

    std::vector<std::string> names() const
    {
        std::vector<std::string> names;
        for (const std::string& line : found()) {
            names.push_back(line.substr(0, line.find(':')));
        }
        return names;
    }

    Places places;

private:
    testsupport::TemporaryDirectory m_directory;
};

TEST_F(SystemFindings, AreNoneOnAHealthyBoard)
{
    EXPECT_THAT(found(), IsEmpty());
    makeName(::geteuid());
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(SystemFindings, NameALoginManagerThatRemovesNames)
{
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root gives files away";
    }
    makeName(1234);
    EXPECT_THAT(found(), IsEmpty()) << "nobody logs in";
    makeProcess(2, "systemd-logind");
    EXPECT_THAT(found(),
                ElementsAre(HasSubstr("; RemoveIPC is on (the default of systemd-logind). Follows: "
                                      "after a logout of that user old and new programs use "
                                      "different locks. Cure: RemoveIPC=no in logind.conf, or run "
                                      "the programs as a user of the system")));
    testsupport::writeFile(places.loginSettings[0] + "/logind.conf", "[Login]\nRemoveIPC=no\n");
    EXPECT_THAT(found(), IsEmpty());
    directory("lib/logind.conf.d");
    testsupport::writeFile(places.loginSettings[2] + "/logind.conf.d/x.conf", "RemoveIPC = yes\n");
    EXPECT_THAT(names(), ElementsAre("remove-ipc"));
    makeName(0);
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(SystemFindings, NameASystemThatRefusesNamesOfOthers)
{
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root gives files away";
    }
    makeName(65534);
    EXPECT_THAT(found(), IsEmpty());
    setProtection("1");
    EXPECT_THAT(names(), ElementsAre("sticky-names"));
    EXPECT_THAT(found(),
                ElementsAre(HasSubstr(
                    "; fs.protected_regular is 1. Follows: everybody but its owner, root "
                    "too, gets EACCES: a program that starts meanwhile has mutexes of its "
                    "own. Cure: let the first program be of the user who owns /dev/shm, or "
                    "set fs.protected_regular to 0")));
    fs::permissions(places.sharedMemory, fs::perms(0755));
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(SystemFindings, NameDirectoriesThatAreMissing)
{
    fs::remove(places.sharedMemory);
    fs::remove(places.temporaryFiles);
    EXPECT_THAT(names(), ElementsAre("shm-missing", "tmp-missing"));
}

TEST_F(SystemFindings, NameDirectoriesThatAreReadOnly)
{
    systemcalls::hooks().access = [](const char* path, int mode) {
        return (mode & W_OK) != 0 ? systemcalls::fail(EROFS)
                                  : systemcalls::real().access(path, mode);
    };
    EXPECT_THAT(names(), ElementsAre("shm-not-writable", "tmp-not-writable"));
}

TEST_F(SystemFindings, NameDirectoriesThatAreFull)
{
    setFreeBlocks(0);
    EXPECT_THAT(names(), ElementsAre("shm-full", "tmp-full"));
}

TEST_F(SystemFindings, AreLookedForThoughAProcessEndsMeanwhile)
{
    // Reading what a process says fails once it has ended; here because it is no file.
    directory("proc/3/stat");
    directory("proc/3/status");
    const ProcessTable processes(places);
    EXPECT_EQ(processes.all().size(), 1U);
    EXPECT_FALSE(processes.ofThread(3).has_value());
}

/** A process's list of mappings with that file among them. */
std::string mapsWith(const std::string& path)
{
    const FileIdentity file = SharedFile::look(path)->identity();
    return "1000-2000 rw-s 00000000 " + file.device + ' ' + std::to_string(file.inode) +
           "                          " + path + '\n';
}

TEST_F(SystemFindings, AreNoneOfProcessesThatStartMeanwhile)
{
    makeName(::geteuid());
    const Dtcm dtcm;
    const auto isUnused = [&](const ProcessTable& processes) {
        return lookAtSharedNames(places, processes, dtcm, std::chrono::milliseconds(0))
            .syncArea.isUnused;
    };
    makeProcess(2, "user");
    const ProcessTable before(places);
    EXPECT_TRUE(isUnused(before));
    const std::string path = places.sharedMemory + "/DtcmSync";
    testsupport::writeFile(places.processes + "/2/maps", mapsWith(path));
    EXPECT_FALSE(isUnused(before));
    EXPECT_FALSE(isUnused(ProcessTable(places)));
}

TEST_F(SystemFindings, SayThatThereAreNoProcessesToLookAt)
{
    fs::remove_all(places.processes);
    const Evidence evidence(places, std::chrono::milliseconds(0));
    const Diagnosis diagnosis = diagnose(evidence);
    EXPECT_TRUE(diagnosis.isBlind);
    EXPECT_THAT(diagnosis.notLookedAt,
                Contains("who uses the shared names: there is nothing in " + places.processes));
}

TEST_F(SystemFindings, LeaveOutAProcessThatEndsWhileItIsLookedAt)
{
    // Can be opened and not be read, as what /proc shows of a process that has ended.
    directory("proc/2/stat");
    EXPECT_THAT(found(), IsEmpty());
}

/** Bytes of words as they lie in memory. */
std::string words(std::initializer_list<std::uint32_t> values)
{
    std::string bytes;
    for (const std::uint32_t value : values) {
        bytes += testsupport::bytesOf(value);
    }
    return bytes;
}

TEST(GlibcLocks, AreReadInBothWordSizes)
{
    using glibc::WordSize;
    const auto held32 = glibc::mutexState(words({1, 0, 77, 0x80, 1, 0}), WordSize::Bits32);
    EXPECT_TRUE(held32->isHeld);
    EXPECT_EQ(held32->owner, 77);
    const std::string mutex64 = words({2, 0, 78, 1, 0x80, 0, 0, 0, 0, 0});
    const auto held64 = glibc::mutexState(mutex64, WordSize::Bits64);
    EXPECT_TRUE(held64->isHeld);
    EXPECT_EQ(held64->owner, 78);
    EXPECT_FALSE(glibc::mutexState(std::string(24, '\0'), WordSize::Bits32)->isHeld);
    EXPECT_FALSE(glibc::mutexState(std::string(39, '\0'), WordSize::Bits64).has_value());
    EXPECT_TRUE(glibc::isSharedMutex(mutex64, WordSize::Bits64));
    EXPECT_FALSE(glibc::isSharedMutex(mutex64, WordSize::Bits32));

    const auto free32 = glibc::semaphoreState(words({3, 0, 0, 2}), WordSize::Bits32);
    EXPECT_EQ(free32->value, 1U);
    EXPECT_EQ(free32->waiters, 2U);
    const auto held = glibc::semaphoreState(words({0, 4, 0, 0, 0, 0, 0, 0}), WordSize::Bits64);
    EXPECT_EQ(held->value, 0U);
    EXPECT_EQ(held->waiters, 4U);
}

TEST(FindingTexts, AreCompleteAndHaveNamesOfTheirOwn)
{
    std::vector<std::string> names = findingNames();
    std::sort(names.begin(), names.end());
    EXPECT_EQ(std::unique(names.begin(), names.end()), names.end());
    EXPECT_GT(names.size(), 40U);
    const std::string page = testsupport::readFile(BSP_TEST_DIAGNOSIS_PAGE);
    for (const std::string& name : names) {
        EXPECT_THAT(page, HasSubstr('`' + name + '`'));
    }
}

} // namespace
