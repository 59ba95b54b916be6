/**
 * @file
 * @brief A kernel image, and a look at what a call that fails leaves over.
 */
#ifndef TESTS_FIRMWARE_KERNELFAULTS_H
#define TESTS_FIRMWARE_KERNELFAULTS_H

#include "FirmwareImages.h"
#include "KernelQuery.h"
#include "RecordingTrace.h"
#include "SystemCalls.h"

#include <gmock/gmock.h>
#include <zlib.h>

#include <string>
#include <vector>

namespace firmware
{

using systemcalls::hooks;
using systemcalls::real;
using testsupport::TemporaryDirectory;

/** Sees to it that nothing is left over, whatever failed. */
class KernelFaults : public testing::Test
{
protected:
    KernelFaults()
    {
        testsupport::writeFile(m_image, kernelImage(kernel + noise(100000)));
        m_descriptors = testsupport::openDescriptors();
        hooks().startInflating = [this](z_stream* stream, int windowBits, const char* version,
                                        int size) {
            ++m_openStreams;
            return real().startInflating(stream, windowBits, version, size);
        };
        hooks().inflateEnd = [this](z_stream* stream) {
            --m_openStreams;
            return real().inflateEnd(stream);
        };
    }
    ~KernelFaults() override
    {
        hooks() = {};
        EXPECT_EQ(testsupport::openDescriptors(), m_descriptors);
        EXPECT_EQ(m_openStreams, 0);
        EXPECT_FALSE(temporaryImageExists());
        EXPECT_FALSE(temporaryImageIsMapped());
    }

    Answer askAgain() const { return askFile(m_image); }

    /** Asks and expects the answer and all messages of how it went. */
    void expectAnswer(const Answer& answer, const std::vector<std::string>& course) const
    {
        EXPECT_EQ(askAgain(), answer);
        EXPECT_EQ(recordingtrace::takeLines(Course), course);
    }

    const TemporaryDirectory m_directory;
    const std::string m_image = m_directory.file("zImage");
    std::size_t m_descriptors = 0;
    int m_openStreams = 0;
};

} // namespace firmware

#endif
