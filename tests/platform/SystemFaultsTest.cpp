/**
 * @file
 * @brief What the stand-ins make of system calls that fail, though the board's files are in order.
 */
#include "BaseBoard.h"
#include "Board.h"
#include "DDevIo.h"
#include "NxuConfig.h"
#include "OpenFile.h"
#include "SettingsChange.h"
#include "SystemCalls.h"
#include "Thrown.h"

#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <future>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using systemcalls::fail;
using systemcalls::Hooks;
using systemcalls::hooks;
using systemcalls::real;
using testsupport::Board;
using testsupport::thrownBy;

/** Makes one call of a function fail, the others go on to the system. */
template <typename Result, typename... Arguments>
void failCall(std::function<Result(Arguments...)> Hooks::*function, int number, int error)
{
    hooks().*function = [=, count = 0](Arguments... arguments) mutable {
        return ++count == number ? fail<Result>(error) : (real().*function)(arguments...);
    };
}

class SystemFaults : public testing::Test
{
protected:
    void TearDown() override { hooks() = {}; }

    Board board;
};

using EepromFaults = SystemFaults;

TEST_F(EepromFaults, AreTheErrnoValueOfTheCall)
{
    board.write("eeprom", "12345678");
    std::array<uint8_t, 8> code{};
    const auto read = [&] { return e2prom_data_read(5, 1, code.data()); };
    failCall(&Hooks::openat, 1, EMFILE);
    EXPECT_EQ(read(), EMFILE);
    failCall(&Hooks::fstat, 1, EIO);
    EXPECT_EQ(read(), EIO);
    failCall(&Hooks::read, 1, ENXIO);
    EXPECT_EQ(read(), ENXIO);
    EXPECT_EQ(read(), 0);
}

using DeviceFaults = SystemFaults;

std::unique_ptr<DDevIo::IDevice> createDevice()
{
    return DDevIo::Factory::getInstance().createUnique("device",
                                                       std::make_unique<DDevIo::PthreadMutex>(0));
}

TEST_F(DeviceFaults, GiveNoHandle)
{
    board.write("device", "1234");
    const auto open = [] { return DDevIo_open("device"); };
    failCall(&Hooks::fstat, 1, EIO);
    EXPECT_EQ(open(), -1);
    EXPECT_EQ(errno, EIO);
    failCall(&Hooks::fcntl, 1, EINVAL);
    EXPECT_EQ(open(), -1);
    EXPECT_EQ(errno, EINVAL);
}

TEST_F(DeviceFaults, OfClosingAreTold)
{
    board.write("device", "1234");
    const int first = DDevIo_open("device");
    failCall(&Hooks::close, 1, EIO);
    EXPECT_EQ(DDevIo_close(first), -1);
    EXPECT_EQ(errno, EIO);
    EXPECT_EQ(DDevIo_close(first), 0);
    // The descriptor is closed all the same.
    const int second = DDevIo_open("device");
    failCall(&Hooks::close, 1, EINTR);
    EXPECT_EQ(DDevIo_close(second), 0);
    ::close(second);
}

TEST_F(DeviceFaults, AreNoReasonToGiveUpAnInterruptedRead)
{
    board.write("device", "1234");
    const auto made = createDevice();
    auto* const device = dynamic_cast<DDevIo::Device<unsigned int>*>(made.get());
    ASSERT_NE(device, nullptr);
    unsigned int value = 0;
    failCall(&Hooks::pread, 1, EINTR);
    EXPECT_EQ(device->read(0, value), 0);
    EXPECT_EQ(value, 0x34333231U);
    failCall(&Hooks::pread, 1, EIO);
    EXPECT_NE(device->read(0, value), 0);
}

TEST_F(DeviceFaults, GiveNoRegistersThatCannotBeMapped)
{
    ASSERT_EQ(::symlink("/dev/zero", board.file("device").c_str()), 0);
    EXPECT_NE(createDevice(), nullptr);
    hooks().mmap = [](auto&&...) {
        errno = ENOMEM;
        return MAP_FAILED;
    };
    EXPECT_EQ(createDevice(), nullptr);
}

TEST_F(SystemFaults, DoNotPutAFileInAStandardStreamsPlace)
{
    // Another thread closes a standard stream behind the look at them.
    const int input = ::dup(STDIN_FILENO);
    hooks().openat = [](int directory, const char* path, int flags, mode_t mode) {
        const int fd = real().openat(directory, path, flags, mode);
        return fd == -1 ? -1 : ::dup2(fd, STDIN_FILENO);
    };
    const int fd = openFile("/dev/null", O_RDONLY).get();
    ::dup2(input, STDIN_FILENO);
    ::close(input);
    EXPECT_GT(fd, STDERR_FILENO);
}

/** One call of those that a change of the store makes. */
struct StoreFault
{
    const char* name;
    std::function<void()> make;
    std::string message;
};

std::ostream& operator<<(std::ostream& stream, const StoreFault& fault)
{
    return stream << fault.name;
}

/** Makes the opening of an entry fail. */
std::function<void()> failOpening(const std::string& entry, int error)
{
    return [=] {
        hooks().openat = [=](int directory, const char* path, int flags, mode_t mode) {
            return path == entry ? fail(error) : real().openat(directory, path, flags, mode);
        };
    };
}

template <typename Function> std::function<void()> failFirst(Function function, int error)
{
    return [=] { failCall(function, 1, error); };
}

const StoreFault storeFaults[] = {
    {"Directory", failFirst(&Hooks::openat, EMFILE),
     "cannot open the directory: Too many open files"},
    {"Settings", failOpening("settings", ENFILE), "cannot open: Too many open files in system"},
    {"Look", failFirst(&Hooks::fstat, EIO), "cannot look at it: Input/output error"},
    {"Read", failFirst(&Hooks::read, EIO), "cannot read: Input/output error"},
    {"ReadThatEndsEarly", [] { hooks().read = [](auto&&...) { return 0; }; },
     "cannot read: it ends after 0 of 10 bytes"},
    {"Lock", failOpening("settings.lock", EMFILE),
     "cannot open settings.lock: Too many open files"},
    {"LockThatIsTaken",
     [] {
         hooks().fcntl = [](int fd, int command, void* argument) {
             return command == F_SETLK ? fail(ENOLCK) : real().fcntl(fd, command, argument);
         };
     },
     "cannot lock settings.lock: No locks available"},
    {"FormerTemporary", failFirst(&Hooks::unlinkat, EACCES),
     "cannot remove settings.new: Permission denied"},
    {"Temporary", failOpening("settings.new", ENOSPC),
     "cannot make settings.new: No space left on device"},
    {"Mode",
     [] {
         // The first one is of the lock.
         failCall(&Hooks::fchmod, 2, EPERM);
     },
     "cannot keep the mode: Operation not permitted"},
    {"Write", failFirst(&Hooks::write, ENOSPC), "cannot write: No space left on device"},
    {"Sync", failFirst(&Hooks::fsync, EIO), "cannot write: Input/output error"},
    {"Rename", failFirst(&Hooks::renameat, EIO),
     "cannot move the new file into place: Input/output error"},
    {"SyncOfTheDirectory", [] { failCall(&Hooks::fsync, 2, EIO); },
     "cannot write the directory: Input/output error"},
    {"SyncOfTheDirectoryAndRenameBack",
     [] {
         failCall(&Hooks::fsync, 2, EIO);
         failCall(&Hooks::renameat, 2, EIO);
     },
     "cannot write the directory: Input/output error"},
};

class StoreFaults : public SystemFaults, public testing::WithParamInterface<StoreFault>
{
protected:
    StoreFaults() { board.write("settings", "key=value\n"); }

    /** What changing the key throws. */
    std::string errorOfChange() const
    {
        return thrownBy<std::runtime_error>([this] {
            settings::change(
                board.file("settings"),
                [](settings::SettingsText& text) { text.set("key", "other"); },
                settings::Deadline(std::chrono::seconds(10)));
        });
    }
};

TEST_P(StoreFaults, AreNamedAndLeaveNoTemporary)
{
    GetParam().make();
    EXPECT_EQ(errorOfChange(), GetParam().message);
    hooks() = {};
    EXPECT_FALSE(board.has("settings.new"));
    EXPECT_EQ(errorOfChange(), "nothing");
    EXPECT_EQ(testsupport::readFile(board.file("settings")), "key=other\n");
}

INSTANTIATE_TEST_SUITE_P(Calls, StoreFaults, testing::ValuesIn(storeFaults),
                         [](const auto& fault) { return fault.param.name; });

TEST_F(StoreFaults, AreNoReasonToGiveUpAnInterruptedWrite)
{
    failCall(&Hooks::write, 1, EINTR);
    EXPECT_EQ(errorOfChange(), "nothing");
}

TEST_F(StoreFaults, OfInterruptedLocksAreTriedAgain)
{
    int tries = 0;
    hooks().fcntl = [&tries](int fd, int command, void* argument) {
        return command == F_SETLK && ++tries == 1 ? fail(EINTR)
                                                  : real().fcntl(fd, command, argument);
    };
    EXPECT_EQ(errorOfChange(), "nothing");
    EXPECT_EQ(tries, 2);
}

TEST_F(StoreFaults, OfLookingAtItStopAQuestion)
{
    // What was changed long ago is not read again when it looks the same.
    hooks().clock_gettime = [](clockid_t clock, timespec* time) {
        const int result = real().clock_gettime(clock, time);
        time->tv_sec += 10;
        return result;
    };
    os::bsp::NxuConfig config;
    EXPECT_EQ(config.get("key"), "value");
    failCall(&Hooks::stat, 1, EACCES);
    EXPECT_EQ(thrownBy([&] { config.get("key"); }), "cannot read the configuration store " +
                                                        board.file("settings") +
                                                        ": cannot open: Permission denied");
    EXPECT_EQ(config.get("key"), "value");
}

TEST_F(StoreFaults, OfAThreadThatGoesOnWritingAreWaitedForTenSeconds)
{
    std::atomic<int> looks{0};
    hooks().steadyNow = [&] {
        return real().steadyNow() + std::chrono::milliseconds(100) * looks++;
    };
    std::promise<void> writes;
    std::promise<void> mayEnd;
    hooks().fsync = [&, isFirst = true](int fd) mutable {
        if (std::exchange(isFirst, false)) {
            writes.set_value();
            mayEnd.get_future().wait();
        }
        return real().fsync(fd);
    };
    os::bsp::NxuConfig config;
    std::thread writer([&] { EXPECT_TRUE(config.set("key", "first")); });
    writes.get_future().wait();
    EXPECT_FALSE(config.set("key", "second"));
    EXPECT_GE(looks, 100);
    mayEnd.set_value();
    writer.join();
    EXPECT_EQ(config.get("key"), "first");
}

} // namespace
