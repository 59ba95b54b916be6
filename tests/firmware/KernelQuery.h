/**
 * @file
 * @brief Asks for the R-state of a kernel image; the kernel that the tests' images hold, and what
 * the query says of them.
 */
#ifndef TESTS_FIRMWARE_KERNELQUERY_H
#define TESTS_FIRMWARE_KERNELQUERY_H

#include "Bsp.h"
#include "Files.h"
#include "HvxTrace.h"
#include "RecordingTrace.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

namespace firmware
{

/** Messages up to this level say how a call went. */
constexpr HvxTraceLevel Course = 5;

inline const std::string kernel = "Linux version 2.6.34.R1A01 (builder)";

/** What somebody puts under the temporary file's name in the hope that it is taken for a kernel. */
inline const std::string planted = "Linux version 6.6.6.R6E6";

inline const std::string inflated =
    "bsp.core 5 Bsp_getKernelRState(): Bsp_inflateArchive() successful";
inline const std::string noTemporaryFile =
    "bsp.core 1 Bsp_getKernelRState(): Could not open tmp file: /dev/shm/zImage_tmp";

inline const std::string noVersion = "bsp.core 1 Bsp_findLinuxVersion(): No Linux version found";
inline const std::string noMapping = "bsp.core 1 Bsp_findLinuxVersion(): unable to mmap temp image";
inline const std::string noHeader = "bsp.core 1 Bsp_findArchive(): Couldn't find ZLIB header";
inline const std::string endOfFile = "bsp.core 4 Bsp_inflateArchive(): End-of-file reached";
inline const std::string notWritten = "bsp.core 1 Bsp_inflateArchive(): fwrite() failed";

inline std::string inflateError(int code)
{
    return "bsp.core 1 Bsp_inflateArchive(): inflate() failed with error " + std::to_string(code);
}

inline std::string headerAt(std::size_t position)
{
    return "bsp.core 5 Bsp_findArchive(): ZLIB header found at pos " + std::to_string(position);
}

inline const std::string headerAt1000 = headerAt(1000);

constexpr const char* TemporaryImage = "/dev/shm/zImage_tmp";

/** What the buffer holds before the call. */
constexpr const char* Untouched = "before";

struct Answer
{
    int result;
    std::string rstate;
};

inline bool operator==(const Answer& left, const Answer& right)
{
    return left.result == right.result && left.rstate == right.rstate;
}

inline std::ostream& operator<<(std::ostream& stream, const Answer& answer)
{
    return stream << answer.result << " \"" << answer.rstate << '"';
}

inline Answer found(const std::string& rstate)
{
    return {0, rstate};
}

inline Answer failed()
{
    return {-1, Untouched};
}

/** Asks for the R-state of the image in that file. */
inline Answer askFile(const std::string& path)
{
    std::array<char, 8> rstate{"before"};
    const int result = Bsp_getKernelRState(path.c_str(), rstate.data(), rstate.size());
    return {result, rstate.data()};
}

/** Asks for the R-state of the image of those bytes. */
inline Answer ask(const std::string& image)
{
    const testsupport::TemporaryDirectory directory;
    testsupport::writeFile(directory.file("zImage"), image);
    return askFile(directory.file("zImage"));
}

/** Expects an answer, and what the call said up to there. */
inline void expectCourse(const Answer& actual, const Answer& expected,
                         const std::vector<std::string>& course)
{
    EXPECT_EQ(actual, expected) << testing::PrintToString(course);
    EXPECT_EQ(recordingtrace::takeLines(Course), course);
}

inline bool temporaryImageExists()
{
    return std::filesystem::exists(std::filesystem::symlink_status(TemporaryImage));
}

/** Whether the temporary file, even a removed one, is still mapped. */
inline bool temporaryImageIsMapped()
{
    return testsupport::readFile("/proc/self/maps").find(TemporaryImage) != std::string::npos;
}

} // namespace firmware

#endif
