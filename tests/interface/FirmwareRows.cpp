#include "RowBuilders.h"

#include <cerrno>

#include <zlib.h>

namespace interface
{

namespace
{

const std::string Kernel = "bsp.core 1 Bsp_getKernelRState(): ";
const std::string Archive = "bsp.core 1 Bsp_findArchive(): ";
const std::string Inflate = "bsp.core 1 Bsp_inflateArchive(): ";
const std::string Banner = "bsp.core 1 Bsp_findLinuxVersion(): ";
const std::string Uboot = "bsp.core 1 Bsp_getUbootProductInfo(): ";
const std::string NoTemporary = Kernel + "Could not open tmp file: /dev/shm/zImage_tmp";
const std::string Interrupted = "bsp.core 4 Bsp_readHelper(): read was interrupted. Retrying...";
const std::string Device = BSP_TEST_DATA_DIR "/u-boot-R2B.bin";

} // namespace

std::vector<FailureRow> firmwareRows()
{
    const std::vector<std::string> kernel{"Bsp_getKernelRState"};
    const std::vector<std::string> uboot{"Bsp_getUbootProductInfo"};
    const std::vector<int> errors{EIO, EAGAIN, EISDIR};
    const auto fails = [](FailureRow row) { return withAnswer(std::move(row), "-1"); };
    return {
        onCase("Bsp_getKernelRState with little room", "-1 kept",
               {Kernel + "Invalid buffer size: 7"}),
        onCase("Bsp_getKernelRState without a name", "-1 kept", {Kernel + "Undefined filename"}),
        onCase("Bsp_getKernelRState without a header", "-1",
               {Archive + "Couldn't find ZLIB header"}),
        onCase("Bsp_getKernelRState without a banner", "-1", {Banner + "No Linux version found"}),
        onCase("Bsp_getKernelRState of damaged data", "-1",
               {Inflate + "inflate() failed with error -3"}),

        fails(onCall(kernel, "open", 1, 1, {Kernel + "Could not open file: /tmp/zImage"})),
        fails(onCall(kernel, "lseek", 1, 1,
                     {Kernel + "lseek(zImage, 0, SEEK_SET) failed for /tmp/zImage"})),
        fails(onCall(kernel, "allocation", 1, 1,
                     {Archive + "File error before archive found. read() returned -1"})),
        withValues(fails(onCall(kernel, "read", 1, 2,
                                {Archive + "File error before archive found. read() returned -1"},
                                Fault::Fails)),
                   errors),
        fails(onCall(kernel, "read", 1, 1,
                     {Archive + "File error before archive found. read() returned 0"},
                     Fault::Gives)),
        withValues(onCall(kernel, "read", 1, Any, {Interrupted}, Fault::Fails), {EINTR}),
        fails(onCall(kernel, "lseek", 2, 2,
                     {Kernel + "lseek(zImage, 1000, SEEK_SET) failed for /tmp/zImage"})),
        fails(onCall(kernel, "open", 2, 2, {NoTemporary})),
        withValues(fails(onCall(kernel, "flock", 1, 1, {NoTemporary})), {ENOLCK}),
        fails(onCall(kernel, "fstat", 1, 1, {NoTemporary})),
        fails(onCall(kernel, "fdopen", 1, 1, {NoTemporary})),
        fails(onCall(kernel, "allocation in fdopen", 1, Any, {NoTemporary})),
        fails(onCall(kernel, "inflateInit2_", 1, 1, {})),
        fails(onCall(kernel, "allocation in inflateInit2_", 1, Any, {})),
        fails(onCall(kernel, "allocation in inflate", 1, Any,
                     {Inflate + "inflate() failed with error -4"})),
        withValues(fails(onCall(kernel, "read", 3, Any, {Inflate + "Read failed with errno = @e"},
                                Fault::Fails)),
                   errors),
        fails(onCall(kernel, "read", 3, 3, {"bsp.core 4 Bsp_inflateArchive(): End-of-file reached"},
                     Fault::Gives)),
        // No failure, but the input is used up.
        withValues(fails(onCall(kernel, "inflate", 1, Any,
                                {"bsp.core 4 Bsp_inflateArchive(): End-of-file reached"})),
                   {Z_BUF_ERROR}),
        fails(onCall(kernel, "inflate", 1, Any, {Inflate + "inflate() failed with error @n"})),
        fails(onCall(kernel, "fwrite", 1, Any, {Inflate + "fwrite() failed"})),
        fails(onCall(kernel, "ferror", 1, Any, {Inflate + "fwrite() failed"})),
        onCall(kernel, "fseek", 1, 1, {Banner + "fseek failed with errno = @e"}),
        // It is the one before the file is taken away.
        onCall({"Bsp_getKernelRState of damaged data"}, "fstat", 2, 2, {}),
        fails(onCall(kernel, "fstat", 2, 2,
                     {Banner + "fstat failed with errno = @e", Banner + "unable to mmap temp image",
                      Banner + "No Linux version found"})),
        fails(onCall(kernel, "mmap", 1, 1,
                     {Banner + "unable to mmap temp image", Banner + "No Linux version found"})),

        fails(
            onCall(uboot, "open", 1, 1,
                   {Uboot + "Failed to open u-boot device with name " + Device + ". errno = @e"})),
        fails(onCall(uboot, "lseek", 1, 1,
                     {Uboot + "Failed to get size of " + Device + ". errno = @e"})),
        fails(onCall(uboot, "lseek", 2, 2, {Uboot + "Failed to set file offset. errno = @e"})),
        fails(onCall(uboot, "allocation", 1, 1, {Uboot + "Failed to allocate 789973 bytes"})),
        withValues(fails(onCall(uboot, "read", 1, Any, {Uboot + "Failed to read file. errno = @e"},
                                Fault::Fails)),
                   errors),
        withValues(onCall(uboot, "read", 1, Any, {Interrupted}, Fault::Fails), {EINTR}),
        withAnswer(onCall(uboot, "read", 1, 1, {}, Fault::Gives), "0 Not found Not found"),
    };
}

} // namespace interface
