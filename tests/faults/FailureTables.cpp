#include "FailureTables.h"

#include "Commands.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace faults
{

namespace
{

enum class End
{
    Nothing, /**< The text is whole. */
    Error,   /**< The text of the error follows. */
    Anything
};

struct MessageRow
{
    const char* command; /**< Beginning of the commands' names. */
    std::string text;
    End end = End::Nothing;
};

const std::string Image = "/tmp/board/zImage";
const std::string Device = BSP_TEST_DATA_DIR "/u-boot-R2B.bin";
const std::string Store = "cannot write the configuration store /tmp/board/settings: ";
const std::string EndsEarly =
    "cannot read: it ends after 0 of " + std::to_string(std::strlen(Settings)) + " bytes";

const std::vector<MessageRow>& messageRows()
{
    static const std::vector<MessageRow> table{
        {"get", "bsp.core 1 operator()(): e2prom_data_read() failed. Returned ", End::Anything},
        {"getKernel", "bsp.core 1 Bsp_getKernelRState(): Could not open file: " + Image},
        {"getKernel",
         "bsp.core 1 Bsp_getKernelRState(): lseek(zImage, 0, SEEK_SET) failed for " + Image},
        {"getKernel",
         "bsp.core 1 Bsp_findArchive(): File error before archive found. read() returned -1"},
        {"getKernel",
         "bsp.core 1 Bsp_findArchive(): File error before archive found. read() returned 0"},
        {"getKernel", "bsp.core 1 Bsp_getKernelRState(): lseek(zImage, ", End::Anything},
        {"getKernel",
         "bsp.core 1 Bsp_getKernelRState(): Could not open tmp file: /dev/shm/zImage_tmp"},
        {"getKernel", "bsp.core 1 Bsp_inflateArchive(): Read failed with errno = ", End::Error},
        {"getKernel", "bsp.core 4 Bsp_inflateArchive(): End-of-file reached"},
        {"getKernel", "bsp.core 1 Bsp_inflateArchive(): fwrite() failed"},
        {"getKernel", "bsp.core 1 Bsp_findLinuxVersion(): fseek failed with errno = ", End::Error},
        {"getKernel", "bsp.core 1 Bsp_findLinuxVersion(): fstat failed with errno = ", End::Error},
        {"getKernel", "bsp.core 1 Bsp_findLinuxVersion(): unable to mmap temp image"},
        {"getKernel", "bsp.core 1 Bsp_findLinuxVersion(): No Linux version found"},
        {"getKernel", "bsp.core 4 Bsp_readHelper(): read was interrupted. Retrying..."},
        {"getUboot",
         "bsp.core 1 Bsp_getUbootProductInfo(): Failed to open u-boot device with name " + Device +
             ". errno = ",
         End::Error},
        {"getUboot",
         "bsp.core 1 Bsp_getUbootProductInfo(): Failed to get size of " + Device + ". errno = ",
         End::Error},
        {"getUboot",
         "bsp.core 1 Bsp_getUbootProductInfo(): Failed to set file offset. errno = ", End::Error},
        {"getUboot",
         "bsp.core 1 Bsp_getUbootProductInfo(): Failed to read file. errno = ", End::Error},
        {"getUboot", "bsp.core 4 Bsp_readHelper(): read was interrupted. Retrying..."},
        {"setState", "bsp.led 1 Led_close(", End::Anything},
        {"setStateAtOnce",
         "bsp.led 3 Led_write(): Partial write: 1 bytes written. 3 left to write"},
        {"setStateAfterTrigger",
         "bsp.led 3 Led_write(): Partial write: 1 bytes written. 7 left to write"},
        {"setStateAfterTrigger",
         "bsp.led 1 Led_enableTrigger: open failed. errno = ", End::Anything},
        {"setStateAfterTrigger", "bsp.led 1 Led_open: Failed to enable Korvanta LED trigger."},
        {"setStateAfterTrigger", "bsp.led 1 Led_open: open failed. errno = ", End::Anything},
        {"getSlotId",
         "Bsp.WarmDatabase 1 memoryMapTheDatabase(): Error during initialization of warm area"},
        {"getSlotId",
         "Bsp.WarmDatabase 1 memoryMapTheDatabase(): Error during initialization of warm area, "
         "error: ",
         End::Error},
        {"getSlotId",
         "Bsp.WarmDatabase 1 initDatabaseSemaphore(): error in sem_open error: ", End::Error},
        {"getSlotId",
         "Bsp.WarmDatabase 1 initBlockSynchronization(): error in shm_open error: ", End::Error},
        {"setRadiolinkMode", "bsp.config 1 set(RadiolinkMode) failed: " + Store + EndsEarly},
        {"setRadiolinkMode", "bsp.config 1 set(RadiolinkMode) failed: " + Store, End::Anything},
        {"clearRadiolinkMode", "bsp.config 1 clear(RadiolinkMode) failed: " + Store + EndsEarly},
        {"clearRadiolinkMode", "bsp.config 1 clear(RadiolinkMode) failed: " + Store, End::Anything},
    };
    return table;
}

bool isOf(const MessageRow& row, const std::string& command)
{
    return command.rfind(row.command, 0) == 0;
}

bool isRow(const MessageRow& row, const std::string& message, int error)
{
    if (message.rfind(row.text, 0) != 0) {
        return false;
    }
    const std::string rest = message.substr(row.text.size());
    switch (row.end) {
    case End::Nothing:
        return rest.empty();
    case End::Error:
        return rest == std::strerror(error);
    case End::Anything:
        return !rest.empty();
    }
    return false;
}

} // namespace

std::set<FailureRow> failuresOf(const std::string& command)
{
    std::set<FailureRow> failures;
    for (const MessageRow& row : messageRows()) {
        if (isOf(row, command) && std::strcmp(row.command, "get") != 0) {
            failures.insert(row.text);
        }
    }
    return failures;
}

FailureRow rowOf(const std::string& command, const std::string& message, int error)
{
    const auto found =
        std::find_if(messageRows().begin(), messageRows().end(), [&](const MessageRow& row) {
            return isOf(row, command) && isRow(row, message, error);
        });
    return found == messageRows().end() ? "" : found->text;
}

bool canVary(const std::string& message)
{
    static const std::vector<std::string> beginnings{
        "bsp.core 7 Bsp_readHelper(): Read ",
        "bsp.core 6 ENTER Bsp_findArchive(fd=",
        "bsp.core 6 ENTER Bsp_inflateArchive(fd=",
        "bsp.core 5 Bsp_getUbootProductInfo(): Product number = Not found",
        "bsp.core 5 Bsp_getUbootProductInfo(): R-state = Not found",
        "bsp.led 6 Led_",
        // The EEPROM cannot be read: it is another product, whose restarts are cold.
        "Bsp.WarmDatabase 5 clearDatabaseIfColdRestart(): COLD restart, clearing database.",
        // Somebody else's semaphore is there, and then it is not.
        "Bsp.WarmDatabase 1 initDatabaseSemaphore(): error in sem_open error: No such file or "
        "directory",
        "qeltrace 1 messages lost: 1",
    };
    return std::any_of(beginnings.begin(), beginnings.end(), [&](const std::string& beginning) {
        return message.rfind(beginning, 0) == 0;
    });
}

} // namespace faults
