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
        expectCourse(askAgain(), answer, course);
    }

    /** Asks and expects that there is no temporary file to use. */
    void expectNoTemporaryFile() const { expectAnswer(failed(), {headerAt1000, noTemporaryFile}); }

    /** Makes the file of a second image, which is asked for at the same time. */
    std::string makeOtherImage() const
    {
        testsupport::writeFile(m_directory.file("other"),
                               kernelImage(noise(200000) + "Linux version 9.9.9.R9Z"));
        return m_directory.file("other");
    }

    const TemporaryDirectory m_directory;
    const std::string m_image = m_directory.file("zImage");
    std::size_t m_descriptors = 0;
    int m_openStreams = 0;
};

} // namespace firmware

#endif
