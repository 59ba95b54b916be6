#include "RealImages.h"

namespace firmware
{

const std::string realKernel = BSP_TEST_DATA_DIR "/zImage-2.6.34.R1A01";
const std::string realBootLoader = BSP_TEST_DATA_DIR "/u-boot-R2B.bin";

std::vector<std::string> courseOfRealKernel(const std::string& fd)
{
    std::vector<std::string> course{
        "bsp.core 6 ENTER Bsp_getKernelRState(" + realKernel + ")",
        "bsp.core 6 ENTER Bsp_findArchive(fd=" + fd + ")",
        "bsp.core 7 Bsp_readHelper(): Read 65536 bytes",
        "bsp.core 5 Bsp_findArchive(): ZLIB header found at pos 18337",
        "bsp.core 6 ENTER Bsp_inflateArchive(fd=" + fd + ")",
    };
    // 513376 bytes, of which the first 18337 are no part of the stream.
    course.insert(course.end(), 30, "bsp.core 7 Bsp_readHelper(): Read 16384 bytes");
    course.insert(course.end(),
                  {"bsp.core 7 Bsp_readHelper(): Read 3519 bytes",
                   "bsp.core 7 Bsp_readHelper(): Read 0 bytes",
                   "bsp.core 5 Bsp_getKernelRState(): Bsp_inflateArchive() successful",
                   "bsp.core 6 ENTER Bsp_findLinuxVersion()"});
    return course;
}

std::vector<std::string> courseOfRealBootLoader()
{
    return {"bsp.core 7 Bsp_readHelper(): Read 789972 bytes",
            "bsp.core 6 Bsp_getUbootProductInfo(): Start parsing for u-boot strings:",
            "bsp.core 6 Bsp_getUbootProductInfo(): \"Product number: \" found at offset 539561",
            "bsp.core 5 Bsp_getUbootProductInfo(): Product number = PN-4402/17",
            "bsp.core 6 Bsp_getUbootProductInfo(): \"R-state: \" found at offset 539588",
            "bsp.core 5 Bsp_getUbootProductInfo(): R-state = R2B"};
}

} // namespace firmware
