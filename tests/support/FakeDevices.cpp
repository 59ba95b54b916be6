#include "FakeDevices.h"

#include "DDevIo.h"
#include "PlatformScope.h"

#include <cerrno>
#include <filesystem>
#include <mutex>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace fakedevices
{

namespace
{

constexpr std::uintmax_t DtcmSize = 32768;
constexpr int CarelessErrno = 99;

int openFd = -1;

int openFile(const std::string& path)
{
    const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (fd == -1) {
        throw std::system_error(errno, std::generic_category(), path);
    }
    std::filesystem::resize_file(path, DtcmSize);
    return fd;
}

/** Counts itself. */
template <typename Register> class FakeDevice : public DDevIo::Device<Register>
{
public:
    FakeDevice() { ++control().created; }
    ~FakeDevice() override { ++control().destroyed; }

    int read(std::size_t offset, Register& value) override
    {
        ++control().reads;
        __atomic_store_n(&control().offset, offset, __ATOMIC_RELAXED);
        if (control().readFails) {
            return -1;
        }
        value = static_cast<Register>(control().word);
        return 0;
    }
};

} // namespace

Dtcm& dtcm()
{
    static Dtcm& instance = *new Dtcm{Dtcm::Mappable, "/tmp/dtcm", 0, {}, {}};
    return instance;
}

Control& control()
{
    static Control& instance =
        *new Control{Control::Registers, 0, false, {}, {}, -1, 0, {0}, {0}, {0}};
    return instance;
}

} // namespace fakedevices

using fakedevices::Control;
using fakedevices::Dtcm;

int DDevIo_open(const char* name)
{
    Dtcm& dtcm = fakedevices::dtcm();
    if (dtcm.onOpen) {
        dtcm.onOpen();
    }
    const testsupport::PlatformScope scope;
    dtcm.calls.push_back("open " + std::string(name));
    switch (dtcm.kind) {
    case Dtcm::Mappable:
        fakedevices::openFd = fakedevices::openFile(dtcm.path);
        break;
    case Dtcm::Unmappable:
        fakedevices::openFd = ::open("/proc/self/exe", O_RDONLY | O_CLOEXEC);
        break;
    case Dtcm::Missing:
        errno = ENOENT;
        return -ENOENT;
    }
    errno = fakedevices::CarelessErrno;
    return dtcm.handle;
}

int DDevIo_getFileDescriptor(int handle)
{
    if (handle != fakedevices::dtcm().handle) {
        throw std::logic_error("no handle: " + std::to_string(handle));
    }
    errno = fakedevices::CarelessErrno;
    return fakedevices::openFd;
}

int DDevIo_close(int handle)
{
    const testsupport::PlatformScope scope;
    fakedevices::dtcm().calls.push_back("close " + std::to_string(handle));
    ::close(fakedevices::openFd);
    errno = fakedevices::CarelessErrno;
    return 0;
}

namespace DDevIo
{

class PthreadMutex::Implementation
{};

PthreadMutex::PthreadMutex(int type)
{
    __atomic_store_n(&fakedevices::control().mutexType, type, __ATOMIC_RELAXED);
}

PthreadMutex::~PthreadMutex() = default;
void PthreadMutex::lock() {}
void PthreadMutex::unlock() {}

Factory& Factory::getInstance()
{
    const testsupport::PlatformScope scope;
    static Factory& instance = *new Factory;
    return instance;
}

std::unique_ptr<IDevice> Factory::createUnique(const std::string& name,
                                               std::unique_ptr<IMutex> mutex)
{
    Control& control = fakedevices::control();
    if (control.onCreate) {
        control.onCreate();
    }
    const testsupport::PlatformScope scope;
    static std::mutex& naming = *new std::mutex;
    {
        const std::lock_guard<std::mutex> guard(naming);
        control.name = name;
    }
    if (dynamic_cast<PthreadMutex*>(mutex.get()) == nullptr) {
        control.mutexType = -1;
    }
    switch (control.kind) {
    case Control::Registers:
        return std::make_unique<fakedevices::FakeDevice<unsigned int>>();
    case Control::OtherType:
        return std::make_unique<fakedevices::FakeDevice<unsigned char>>();
    case Control::Missing:
        break;
    }
    return nullptr;
}

} // namespace DDevIo
