#include "Board.h"
#include "DDevIo.h"
#include "FileDescriptor.h"
#include "Nodes.h"
#include "Program.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cerrno>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using DDevIo::Device;
using DDevIo::Factory;
using DDevIo::IDevice;
using DDevIo::IMutex;
using DDevIo::PthreadMutex;
using namespace testing;
using testsupport::Board;

std::unique_ptr<IDevice> open(const std::string& name)
{
    return Factory::getInstance().createUnique(name, std::make_unique<PthreadMutex>(0));
}

class OnBoard : public Test
{
protected:
    /** A device of that contents. */
    std::unique_ptr<IDevice> make(const std::string& contents) const
    {
        board.write("device", contents);
        return open("device");
    }

    const Board board;
};
using DeviceHandle = OnBoard;
using DeviceRegisters = OnBoard;
using DeviceFactory = OnBoard;

const char* const NoNames[] = {"", ".", "..", "/", "a/b", "../device", "/etc/passwd", "device/"};

std::string wordsOf(std::initializer_list<unsigned int> words)
{
    return {reinterpret_cast<const char*>(words.begin()), words.size() * sizeof(unsigned int)};
}

/** Lock that writes down what happens to it. */
class LoggingMutex : public IMutex
{
public:
    explicit LoggingMutex(std::vector<std::string>& log) : m_log(log) {}
    ~LoggingMutex() override { m_log.emplace_back("gone"); }
    void lock() override { m_log.emplace_back("lock"); }
    void unlock() override { m_log.emplace_back("unlock"); }

private:
    std::vector<std::string>& m_log;
};

/** What a read gives; @p untouched when it fails, which is asserted. */
unsigned int readOf(IDevice& device, std::size_t offset, unsigned int untouched = 0xDEAD)
{
    auto* const registers = dynamic_cast<Device<unsigned int>*>(&device);
    EXPECT_THAT(registers, NotNull());
    unsigned int value = untouched;
    const int status = registers->read(offset, value);
    EXPECT_EQ(status, value == untouched ? -1 : 0);
    return value;
}

void expectNoHandle(const char* name, int error)
{
    SCOPED_TRACE(name == nullptr ? "null" : name);
    errno = 0;
    EXPECT_LT(DDevIo_open(name), 0);
    EXPECT_EQ(errno, error);
}

TEST_F(DeviceHandle, GivesADescriptorToMap)
{
    board.write("top.dtcm0", std::string(32768, 'x'));
    const int handle = DDevIo_open("top.dtcm0");
    ASSERT_GE(handle, 0);
    const int fd = DDevIo_getFileDescriptor(handle);
    void* const memory = ::mmap(nullptr, 32768, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    ASSERT_NE(memory, MAP_FAILED);
    EXPECT_EQ(DDevIo_close(handle), 0);
    static_cast<char*>(memory)[32767] = 'y'; // The mapping stays.
    ASSERT_EQ(::munmap(memory, 32768), 0);
    EXPECT_EQ(testsupport::readFile(board.file("top.dtcm0")), std::string(32767, 'x') + 'y');
}

TEST_F(DeviceHandle, IsNotForTheProgramsThatThisProcessStarts)
{
    board.write("device", "");
    const int handle = DDevIo_open("device");
    EXPECT_EQ(::fcntl(DDevIo_getFileDescriptor(handle), F_GETFD), FD_CLOEXEC);
    EXPECT_EQ(DDevIo_close(handle), 0);
}

TEST_F(DeviceHandle, FollowsALinkToADeviceNode)
{
    ASSERT_EQ(::symlink("/dev/zero", board.file("device").c_str()), 0);
    const int handle = DDevIo_open("device");
    ASSERT_GE(handle, 0);
    char byte = 'x';
    EXPECT_EQ(::read(DDevIo_getFileDescriptor(handle), &byte, 1), 1);
    EXPECT_EQ(byte, '\0');
    EXPECT_EQ(DDevIo_close(handle), 0);
}

TEST_F(DeviceHandle, IsRefusedForADeviceThatIsNotThere)
{
    expectNoHandle("device", ENOENT);
    std::filesystem::create_directory(board.file("device"));
    expectNoHandle("device", EISDIR);
    EXPECT_FALSE(board.has("other"));
}

TEST_F(DeviceHandle, IsRefusedForAWarmAreaThatIsTooShort)
{
    for (const std::size_t size : {0U, 1U, 32767U}) {
        board.write("top.dtcm0", std::string(size, 'x'));
        SCOPED_TRACE(size);
        expectNoHandle("top.dtcm0", EIO);
    }
    for (const std::size_t size : {32768U, 32769U}) {
        board.write("top.dtcm0", std::string(size, 'x'));
        const int handle = DDevIo_open("top.dtcm0");
        EXPECT_GE(handle, 0) << size;
        EXPECT_EQ(DDevIo_close(handle), 0) << size;
    }
}

TEST_F(DeviceHandle, DoesNotMeasureADeviceNode)
{
    testsupport::makeLink("/dev/zero", board.file("top.dtcm0"));
    const int handle = DDevIo_open("top.dtcm0");
    EXPECT_GE(handle, 0);
    EXPECT_EQ(DDevIo_close(handle), 0);
}

TEST_F(DeviceHandle, IsRefusedForWhatIsNoMemory)
{
    testsupport::makeNode(S_IFIFO, board.file("pipe"));
    testsupport::makeNode(S_IFSOCK, board.file("socket"));
    const testsupport::Terminal terminal;
    ASSERT_NE(terminal.path(), "");
    testsupport::makeLink(terminal.path(), board.file("terminal"));
    expectNoHandle("pipe", ENODEV);
    expectNoHandle("terminal", ENODEV);
    expectNoHandle("socket", ENXIO);
}

TEST_F(DeviceHandle, IsOneThatReadsWait)
{
    testsupport::makeLink("/dev/zero", board.file("device"));
    const int handle = DDevIo_open("device");
    EXPECT_EQ(::fcntl(DDevIo_getFileDescriptor(handle), F_GETFL) & O_NONBLOCK, 0);
    EXPECT_EQ(DDevIo_close(handle), 0);
}

TEST_F(DeviceHandle, IsNoStandardStreamsDescriptor)
{
    board.write("device", "");
    EXPECT_TRUE(testsupport::holdsInCopy([] {
        for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            ::close(fd);
        }
        return DDevIo_getFileDescriptor(DDevIo_open("device")) > STDERR_FILENO;
    }));
}

TEST_F(DeviceHandle, IsRefusedForWhatIsNoName)
{
    board.write("device", "");
    for (const char* name : NoNames) {
        expectNoHandle(name, EINVAL);
    }
    expectNoHandle(nullptr, EINVAL);
}

TEST_F(DeviceHandle, CannotBeClosedTwice)
{
    board.write("device", "");
    const int handle = DDevIo_open("device");
    EXPECT_EQ(DDevIo_close(handle), 0);
    errno = 0;
    EXPECT_LT(DDevIo_close(handle), 0);
    EXPECT_EQ(errno, EBADF);
    EXPECT_LT(DDevIo_close(-1), 0);
}

TEST_F(DeviceRegisters, AreReadInNativeByteOrder)
{
    board.write("top.sys_ctrl0", wordsOf({2, 0x80000001U, 0xFFFFFFFFU}));
    const auto device = open("top.sys_ctrl0");
    ASSERT_THAT(device, NotNull());
    EXPECT_EQ(readOf(*device, 0), 2U);
    EXPECT_EQ(readOf(*device, 4), 0x80000001U);
    EXPECT_EQ(readOf(*device, 8), 0xFFFFFFFFU);
}

TEST_F(DeviceRegisters, AreReadAnewEachTime)
{
    const auto device = make(wordsOf({1}));
    EXPECT_EQ(readOf(*device, 0), 1U);
    const int fd = ::open(board.file("device").c_str(), O_WRONLY | O_CLOEXEC);
    const std::string changed = wordsOf({7});
    ASSERT_EQ(::write(fd, changed.data(), changed.size()), 4);
    ::close(fd);
    EXPECT_EQ(readOf(*device, 0), 7U);
}

TEST_F(DeviceRegisters, AreReadThroughALinkToADeviceNode)
{
    ASSERT_EQ(::symlink("/dev/zero", board.file("device").c_str()), 0);
    const auto device = open("device");
    ASSERT_THAT(device, NotNull());
    EXPECT_EQ(readOf(*device, 0), 0U);
}

TEST_F(DeviceRegisters, EndWithTheFile)
{
    const auto device = make(wordsOf({1, 2}) + "abc");
    EXPECT_EQ(readOf(*device, 4), 2U);
    EXPECT_EQ(readOf(*device, 8), 0xDEADU);
    EXPECT_EQ(readOf(*device, 12), 0xDEADU);
}

TEST_F(DeviceRegisters, EndWithTheFirstPage)
{
    const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    const auto device = make(std::string(2 * page, 'a'));
    EXPECT_EQ(readOf(*device, page - 4), 0x61616161U);
    EXPECT_EQ(readOf(*device, page), 0xDEADU);
    EXPECT_EQ(readOf(*device, ~std::size_t{3}), 0xDEADU);
}

TEST_F(DeviceRegisters, AreAligned)
{
    const auto device = make(std::string(16, 'a'));
    for (const std::size_t offset : {1U, 2U, 3U, 5U}) {
        EXPECT_EQ(readOf(*device, offset), 0xDEADU) << offset;
    }
}

TEST_F(DeviceRegisters, FailToBeReadWhenTheFileWasCutOff)
{
    const auto device = make(wordsOf({1, 2}));
    ASSERT_EQ(::truncate(board.file("device").c_str(), 4), 0);
    EXPECT_EQ(readOf(*device, 0), 1U);
    EXPECT_EQ(readOf(*device, 4), 0xDEADU);
    ASSERT_EQ(::truncate(board.file("device").c_str(), 0), 0);
    EXPECT_EQ(readOf(*device, 0), 0xDEADU);
}

TEST_F(DeviceRegisters, FailToBeReadWhileTheFileIsCutOffAgainAndAgain)
{
    const auto device = make(wordsOf({7}));
    std::atomic<bool> done{false};
    const syscalls::FileDescriptor file(::open(board.file("device").c_str(), O_WRONLY | O_CLOEXEC));
    std::thread cutter([&] {
        const std::string word = wordsOf({7});
        while (!done) {
            EXPECT_EQ(::ftruncate(file.get(), 0), 0);
            EXPECT_EQ(::pwrite(file.get(), word.data(), word.size(), 0), 4);
        }
    });
    bool wasRead = false;
    bool wasCut = false;
    for (int i = 0; i < 100000 || !wasRead || !wasCut; ++i) {
        const unsigned int value = readOf(*device, 0);
        wasRead = wasRead || value == 7;
        wasCut = wasCut || value == 0xDEAD;
    }
    done = true;
    cutter.join();
}

TEST_F(DeviceRegisters, OfAnEmptyFileAreNone)
{
    const auto device = make("");
    ASSERT_THAT(device, NotNull());
    EXPECT_EQ(readOf(*device, 0), 0xDEADU);
}

TEST_F(DeviceRegisters, AreReadUnderTheDevicesLock)
{
    board.write("device", wordsOf({1}));
    std::vector<std::string> log;
    auto device =
        Factory::getInstance().createUnique("device", std::make_unique<LoggingMutex>(log));
    EXPECT_THAT(log, IsEmpty());
    EXPECT_EQ(readOf(*device, 0), 1U);
    EXPECT_EQ(readOf(*device, 4), 0xDEADU);
    EXPECT_THAT(log, ElementsAre("lock", "unlock", "lock", "unlock"));
    device.reset();
    EXPECT_THAT(log, ElementsAre("lock", "unlock", "lock", "unlock", "gone"));
}

TEST_F(DeviceRegisters, NeedNoLock)
{
    board.write("device", wordsOf({5}));
    const auto device = Factory::getInstance().createUnique("device", nullptr);
    EXPECT_EQ(readOf(*device, 0), 5U);
}

TEST_F(DeviceFactory, IsOne)
{
    EXPECT_EQ(&Factory::getInstance(), &Factory::getInstance());
}

TEST_F(DeviceFactory, MakesNothingOfWhatCannotBeOpenedAndMapped)
{
    EXPECT_THAT(open("device"), IsNull());
    std::filesystem::create_directory(board.file("directory"));
    EXPECT_THAT(open("directory"), IsNull());
    ASSERT_EQ(::mkfifo(board.file("pipe").c_str(), 0600), 0);
    EXPECT_THAT(open("pipe"), IsNull());
    testsupport::makeNode(S_IFSOCK, board.file("socket"));
    EXPECT_THAT(open("socket"), IsNull());
    const testsupport::Terminal terminal;
    ASSERT_NE(terminal.path(), "");
    testsupport::makeLink(terminal.path(), board.file("terminal"));
    EXPECT_THAT(open("terminal"), IsNull());
    ASSERT_EQ(::symlink("nowhere", board.file("link").c_str()), 0);
    EXPECT_THAT(open("link"), IsNull());
}

TEST_F(DeviceFactory, MakesNothingOfWhatIsNoName)
{
    board.write("device", wordsOf({1}));
    for (const char* name : NoNames) {
        EXPECT_THAT(open(name), IsNull()) << name;
    }
    EXPECT_THAT(open(std::string("device\0", 7)), IsNull());
}

TEST_F(DeviceFactory, EndsTheLockOfADeviceThatItCannotMake)
{
    std::vector<std::string> log;
    EXPECT_THAT(Factory::getInstance().createUnique("none", std::make_unique<LoggingMutex>(log)),
                IsNull());
    EXPECT_THAT(log, ElementsAre("gone"));
}

TEST_F(DeviceFactory, LeavesNoDescriptorOpen)
{
    std::filesystem::create_directory(board.file("directory"));
    board.write("device", wordsOf({1}));
    const std::size_t descriptors = testsupport::openDescriptors();
    EXPECT_THAT(open("directory"), IsNull());
    EXPECT_THAT(open("device"), NotNull());
    EXPECT_EQ(testsupport::openDescriptors(), descriptors);
}

TEST(DeviceMutex, KeepsThreadsApart)
{
    PthreadMutex mutex(0);
    int count = 0;
    const auto work = [&] {
        for (int i = 0; i < 10000; ++i) {
            mutex.lock();
            ++count;
            mutex.unlock();
        }
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_EQ(count, 20000);
}

TEST(DeviceMutex, IsOfTheTypeAskedFor)
{
    PthreadMutex recursive(PTHREAD_MUTEX_RECURSIVE);
    recursive.lock();
    recursive.lock();
    recursive.unlock();
    recursive.unlock();

    PthreadMutex checking(PTHREAD_MUTEX_ERRORCHECK);
    checking.lock();
    EXPECT_THROW(checking.lock(), std::system_error);
    checking.unlock();
}

TEST(DeviceMutex, IsNotMadeOfAnUnknownType)
{
    EXPECT_THROW(PthreadMutex(4711), std::system_error);
}

} // namespace
