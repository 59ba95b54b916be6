// What bsp-diag asks of the kernel, call by call.

#include "DiagTest.h"
#include "Namespaces.h"
#include "Patterns.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <sstream>

namespace
{

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/** A system call as strace writes it. */
struct Call
{
    std::string name;
    std::string text; /**< The whole of it. */

    bool has(const std::string& part) const { return text.find(part) != std::string::npos; }
    /** The path that an openat names. */
    std::string path() const
    {
        const std::size_t begin = text.find('"') + 1;
        return text.substr(begin, text.find('"', begin) - begin);
    }
};

/** Calls that change nothing, wait for nobody and take no lock, whatever their arguments are. */
const std::vector<std::string> Harmless = testsupport::wordsOf(
    "access arch_prctl brk clock_gettime close exit_group faccessat faccessat2 fstat "
    "fstatfs getdents64 geteuid getpid getrandom getrlimit getuid lseek lstat "
    "mprotect mremap munmap newfstatat pread64 read readlink rseq rt_sigaction stat "
    "set_robust_list set_tid_address statfs statx sysinfo uname");

bool isHarmlessName(const std::string& name)
{
    return std::find(Harmless.begin(), Harmless.end(), name) != Harmless.end();
}

bool isBelow(const std::string& path, const std::string& directory)
{
    return path.rfind(directory + '/', 0) == 0;
}

class Calls : public DiagTest
{
protected:
    void SetUp() override
    {
        if (!std::string(BSP_TEST_EMULATOR).empty()) {
            GTEST_SKIP() << "the emulator's calls are its own";
        }
        if (!std::string(BSP_TEST_SANITIZERS).empty()) {
            GTEST_SKIP() << "the sanitizers make calls of their own";
        }
        if (!testsupport::haveNamespaces()) {
            GTEST_SKIP() << testsupport::NoNamespaces << "below proot nobody else can trace";
        }
        DiagTest::SetUp();
    }

    std::vector<Call> callsOf(const Words& words) const
    {
        testsupport::Program program = diag(words);
        program.arguments.insert(program.arguments.begin(),
                                 {"-qq", "-s", "4096", "-o", file("calls"), program.path});
        program.path = "/usr/bin/strace";
        const testsupport::Outcome outcome = program.run();
        EXPECT_EQ(outcome.err, "");
        std::vector<Call> calls;
        std::istringstream lines(testsupport::readFile(file("calls")));
        for (std::string line; std::getline(lines, line);) {
            calls.push_back({line.substr(0, line.find('(')), line});
        }
        EXPECT_GT(calls.size(), 50U);
        return calls;
    }

    /** Whether a call can disturb a running system. */
    bool isHarmless(const Call& call) const
    {
        if (call.name == "openat") {
            return isHarmlessOpening(call);
        }
        if (call.name == "mmap") {
            return !call.has("MAP_SHARED") || !call.has("PROT_WRITE");
        }
        if (call.name == "fcntl") {
            return !testsupport::firstMatch(call.text, "F_(GET|SET)F[DL]|F_DUPFD_CLOEXEC").empty();
        }
        return isHarmlessName(call.name) || (call.name == "futex" && call.has("FUTEX_WAKE")) ||
               (call.name == "write" && call.has("write(1, ")) ||
               (call.name == "ioctl" && call.has("TCGETS")) ||
               (call.name == "prlimit64" && call.has(", NULL, ")) ||
               (call.name == "kill" && call.has(", 0)")) || call.name == "clock_nanosleep" ||
               call.name == "execve";
    }

    /** Only to read, but for the memory that the layer maps, and waiting for nobody. */
    bool isHarmlessOpening(const Call& call) const
    {
        const std::string path = call.path();
        const bool isMemory = path == boardFile("top.dtcm0");
        const bool isOfOthers = isBelow(path, "/dev/shm") || isBelow(path, board()) ||
                                isBelow(path, "/tmp") || isBelow(path, "/sys/class/leds");
        return (call.has("O_RDONLY") || (isMemory && call.has("O_RDWR"))) && !call.has("O_CREAT") &&
               !call.has("O_TRUNC") && (!isOfOthers || call.has("O_NONBLOCK")) &&
               (!isBelow(path, "/dev/shm") || call.has("O_NOFOLLOW"));
    }

    Words harmful(const std::vector<Call>& calls) const
    {
        Words texts;
        for (const Call& call : calls) {
            if (!isHarmless(call)) {
                texts.push_back(call.text);
            }
        }
        return texts;
    }

    /** In seconds. */
    static double sleptIn(const std::vector<Call>& calls)
    {
        double sum = 0;
        for (const Call& call : calls) {
            const Words time =
                testsupport::firstMatch(call.text, R"(tv_sec=([0-9]+), tv_nsec=([0-9]+)\})");
            if (!time.empty() && call.name == "clock_nanosleep") {
                sum += std::stod(time[1]) + std::stod(time[2]) / 1e9;
            }
        }
        return sum;
    }

    /** That both commands disturb nothing, and end by themselves. */
    void expectNoHarm() const
    {
        for (const char* const command : {"check", "info"}) {
            const std::vector<Call> calls = callsOf({command});
            EXPECT_THAT(harmful(calls), IsEmpty()) << command;
            EXPECT_LT(sleptIn(calls), 0.5) << command;
        }
    }
};

TEST_F(Calls, DisturbNoHealthyBoard)
{
    expectNoHarm();
    const StoreUser user(board(), {"slot", "5", "object", "LINK"});
    expectNoHarm();
}

TEST_F(Calls, DisturbNoBoardWhereLocksAreHeld)
{
    const StoreUser holder(board(), {"slot", "5", "lock", "LINK", "lockslot", "hold"});
    expectNoHarm();
}

TEST_F(Calls, DisturbNoBoardWhereNamesWereLeft)
{
    StoreUser(board(), {"open", "hold"}).kill();
    testsupport::writeFile("/dev/shm/zImage_tmp", "image");
    expectNoHarm();
}

TEST_F(Calls, MakeNothingThatIsMissing)
{
    for (const char* const name : {"eeprom", "top.dtcm0", "top.sys_ctrl0"}) {
        fs::remove(boardFile(name));
    }
    fs::remove_all("/sys/class/leds/red");
    expectNoHarm();
    fs::remove_all(board());
    expectNoHarm();
}

TEST_F(Calls, OfOtherCommandsAreToldFromHarmlessOnes)
{
    StoreUser(board(), {"open"}).kill();
    EXPECT_THAT(harmful(callsOf({"capture", file("capsule")})),
                Contains(HasSubstr("O_CREAT|O_EXCL")));
    EXPECT_THAT(harmful(callsOf({"repair", "--yes", "--ignore-unseen", "DtcmSync"})),
                ElementsAre(testing::StartsWith("unlink(\"/dev/shm/DtcmSync\")")));
}

TEST_F(Calls, ReadTheEepromOnce)
{
    const auto readings = [this](const Words& words) {
        Words paths;
        for (const Call& call : callsOf(words)) {
            if (call.name == "openat" && call.path() == boardFile("eeprom")) {
                paths.push_back(call.path());
            }
        }
        return paths;
    };
    for (const Words& words : {Words{"info"}, Words{"info", "--json"}, Words{"check"},
                               Words{"capture", file("capsule")}})
    {
        EXPECT_THAT(readings(words), ElementsAre(boardFile("eeprom"))) << words[0];
    }
    fs::remove(boardFile("eeprom"));
    EXPECT_THAT(readings({"info"}), ElementsAre(boardFile("eeprom"))) << "one that fails";
}

/** What a capsule can hold is in the files that were opened while it was made. */
TEST_F(Calls, OpenForACapsuleWhatIsOfTheBoard)
{
    write("settings", "RadiolinkMode=Rl5\n");
    write("other", "not the board's");
    testsupport::writeFile("/dev/shm/other", "not the layer's");
    testsupport::writeFile("/tmp/other", "somebody's");
    const StoreUser user(board(), {"slot", "5", "object", "LINK"});
    // Beside these: programs' libraries, which processes there are and what they have mapped, and
    // the system's settings that findings are about.
    const std::string ofTheSystem =
        R"(^(/|/etc/ld\.so\.cache|.*/lib[[:alnum:]_+.-]*\.so[0-9.]*|/etc/localtime|/proc|)"
        R"(/proc/(self|[0-9]+)/(maps|stat|status|task(/[0-9]+/maps)?)|)"
        R"(/proc/(stat|locks|sys/fs/protected_regular)|(/etc|/run|/usr/lib)/systemd/logind\.conf(\.d)?)$)";
    std::set<std::string> paths;
    for (const Call& call : callsOf({"capture", file("capsule")})) {
        if (call.name == "openat" && testsupport::firstMatch(call.path(), ofTheSystem).empty()) {
            paths.insert(normal(call.path()));
        }
    }
    std::set<std::string> expected = {"BOARD/eeprom",         "BOARD/settings", "BOARD/top.dtcm0",
                                      "BOARD/top.sys_ctrl0",  Semaphore,        Mutexes,
                                      normal(file("capsule"))};
    for (const std::string led : {"yellow", "red", "green"}) {
        expected.insert("/sys/class/leds/" + led + "/trigger");
        expected.insert("/sys/class/leds/" + led + "/korvanta_state");
    }
    EXPECT_EQ(paths, expected);
}

} // namespace
