/**
 * @file
 * @brief Devices for tests: the DTCM in a file, and a control device with a reset register.
 *
 * Linking it to a test replaces the device library. A test case describes the devices before the
 * layer opens them.
 */
#ifndef TESTS_SUPPORT_FAKEDEVICES_H
#define TESTS_SUPPORT_FAKEDEVICES_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace fakedevices
{

/** The device that is opened for mapping. The library leaves errno at 99 wherever it can. */
struct Dtcm
{
    enum Kind
    {
        Mappable,   /**< The file below, made with 32768 bytes 0 when it is missing. */
        Unmappable, /**< Cannot be mapped for writing: mmap fails with EACCES. */
        Missing     /**< Cannot be opened. */
    };

    Kind kind;
    std::string path;               /**< The file that is mapped. */
    int handle;                     /**< Handle of the open device; 0, which is a good one. */
    std::function<void()> onOpen;   /**< Called in every open before anything else. */
    std::vector<std::string> calls; /**< Every call, as "open NAME" or "close HANDLE". */
};
Dtcm& dtcm();

/** The device that is opened for its registers. */
struct Control
{
    enum Kind
    {
        Registers, /**< Has the register below. */
        OtherType, /**< A device with registers of another width. */
        Missing    /**< There is no such device. */
    };

    Kind kind;
    std::uint32_t word;             /**< What the register holds. */
    bool readFails;                 /**< Reads fail and leave the value as it is. */
    std::function<void()> onCreate; /**< Called in every creation before anything else. */
    std::string name;               /**< Name that was asked for last. */
    int mutexType;                  /**< Type of the mutex of the last creation; -1 for none. */
    std::size_t offset;             /**< Offset of the last read. */
    std::atomic<int> created;       /**< Devices made so far. */
    std::atomic<int> destroyed;     /**< Devices released so far. */
    std::atomic<int> reads;         /**< Registers read so far. */
};
Control& control();

} // namespace fakedevices

#endif
