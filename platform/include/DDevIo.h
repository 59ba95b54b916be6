/**
 * @file
 * @brief Interface of the device access library DDevIo.
 *
 * Devices are opened by name. The C functions give a descriptor that can be mapped; the C++ classes
 * give access to a device's registers.
 */
#ifndef PLATFORM_DDEVIO_H
#define PLATFORM_DDEVIO_H

#ifdef __cplusplus
extern "C"
{
#endif

    /** Opens a device for mapping. Returns a handle, or a negative number with errno set. */
    int DDevIo_open(const char* name);

    /** The file descriptor of an open device; it stays the library's and ends with DDevIo_close. */
    int DDevIo_getFileDescriptor(int handle);

    /** Closes a device. Mappings made of it stay. Returns 0, or a negative number with errno set.
     */
    int DDevIo_close(int handle);

#ifdef __cplusplus
}

#include <cstddef>
#include <memory>
#include <string>

namespace DDevIo
{

/** Lock that a device takes around each access. */
class IMutex
{
public:
    virtual ~IMutex() = default;
    virtual void lock() = 0;   /**< Waits for the lock and takes it. */
    virtual void unlock() = 0; /**< Gives the lock back. */
};

/** Lock for the threads of one process. */
class PthreadMutex : public IMutex
{
public:
    /** @p type is the type of the mutex as pthread_mutexattr_settype takes it; 0 is the default. */
    explicit PthreadMutex(int type);
    ~PthreadMutex() override;
    PthreadMutex(const PthreadMutex&) = delete;
    PthreadMutex& operator=(const PthreadMutex&) = delete;
    void lock() override;   /**< Waits for the mutex and takes it. */
    void unlock() override; /**< Gives the mutex back. */

private:
    class Implementation;
    std::unique_ptr<Implementation> m_implementation;
};

/** An open device of any register width. */
class IDevice
{
public:
    virtual ~IDevice() = default;
};

/** An open device with registers of type @p Register. */
template <typename Register> class Device : public IDevice
{
public:
    /**
     * Reads one register.
     *
     * @param offset  byte offset of the register in the device
     * @param value   receives the register; untouched on failure
     * @return 0 on success, a negative number on failure
     */
    virtual int read(std::size_t offset, Register& value) = 0;
};

/** Makes devices. */
class Factory
{
public:
    /** The process's factory. */
    static Factory& getInstance();

    /**
     * Opens a device.
     *
     * @param name   name of the device
     * @param mutex  lock for the device's accesses
     * @return the device, or null when there is none of that name
     */
    virtual std::unique_ptr<IDevice> createUnique(const std::string& name,
                                                  std::unique_ptr<IMutex> mutex);

    virtual ~Factory() = default;
};

} // namespace DDevIo
#endif

#endif
