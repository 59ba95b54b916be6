// How the banner is found in an inflated kernel, and what is read from it.

#include "FirmwareImages.h"
#include "KernelQuery.h"
#include "RecordingTrace.h"

#include <gmock/gmock.h>

#include <random>
#include <sstream>

namespace
{

using namespace firmware;
using recordingtrace::takeLines;
using testing::ElementsAre;

/** Each of them by itself, at the end of the kernel, and with more behind it. */
void expectAll(const Answer& answer, const std::vector<std::string>& kernels)
{
    for (const std::string& contents : kernels) {
        for (const std::string& image :
             {contents, noise(5000) + contents, noise(4096) + contents + " " + noise(9000)})
        {
            EXPECT_EQ(ask(kernelImage(image)), answer) << contents;
            const auto errors = takeLines(1);
            if (answer == failed()) {
                EXPECT_THAT(errors, ElementsAre(noVersion)) << contents;
            } else {
                EXPECT_THAT(errors, testing::IsEmpty()) << contents;
            }
        }
    }
}

TEST(KernelBanner, HasTheRStateAsTheVersionsFourthField)
{
    expectAll(found("R1A01"), {"Linux version 2.6.34.R1A01", "Linux version 1.2.3.R1A01-rc1"});
    expectAll(found("R2B05"), {"Linux version 3.10.104.R2B05 (root@host) #1"});
    expectAll(found("R12ABC0"), {"Linux version 4.1.2.R12ABC01", "Linux version 4.1.2.R12ABC0"});
    expectAll(found("r"), {"Linux version 0.0.0.r"});
    expectAll(found("4"), {"Linux version 1.2.3.4.5"});
    expectAll(found("R1"),
              {"Linux version 1.2.3.R1_A", "Linux version 1.2.3.R1/A", "Linux version 1.2.3.R1:A",
               "Linux version 1.2.3.R1@A", "Linux version 1.2.3.R1[A", "Linux version 1.2.3.R1`A",
               "Linux version 1.2.3.R1{A", "Linux version 1.2.3.R1" + nul + "A01"});
    expectAll(found("zZ09aA"), {"Linux version 1.2.3.zZ09aA"});
}

TEST(KernelBanner, WithoutAFourthFieldIsFoundAndLeavesTheBufferAlone)
{
    expectAll(found(Untouched),
              {"Linux version 3.10.104", "Linux version 3.10.104.", "Linux version 3.10.104. R1A",
               "Linux version 3.10.104.-R1A", "Linux version 3.10.104.\xC4R1A",
               "Linux version 3.10.R1A", "Linux version 3.10 .104.R1A",
               "Linux version 3,10,104,R1A", "Linux version .10.104.R1A",
               "Linux version - 3.10.104.R1A", "Linux version +-3.10.104.R1A",
               "Linux version 0x3.10.104.R1A", "Linux version x3.10.104.R1A",
               "Linux version 3.10" + nul + ".104.R1A", "Linux version " + nul + "3.10.104.R1A",
               "Linux version", "Linux version ", "Linux version 3", "Linux version +"});
}

TEST(KernelBanner, IsSeparatedFromTheVersionByAnyOneCharacter)
{
    expectAll(found("R1A"),
              {"Linux version" + nul + "1.2.3.R1A", "Linux version\n1.2.3.R1A",
               "Linux version71.2.3.R1A", "Linux version-1.2.3.R1A", "Linux versionL1.2.3.R1A",
               "Linux version\xFF" + std::string("1.2.3.R1A")});
    expectAll(found(Untouched), {"Linux version1.2.3.R1A"});
}

TEST(KernelBanner, MayHaveBlanksAndSignsBeforeTheNumbers)
{
    expectAll(found("R1A"),
              {"Linux version  1.2.3.R1A", "Linux version \t\n\v\f\r1. 2.\n3.R1A",
               "Linux version +1.-2.+3.R1A", "Linux version " + std::string(300, ' ') + "1.2.3.R1A",
               "Linux version " + std::string(100000, '\n') + "-1.2.3.R1A"});
}

TEST(KernelBanner, MayHaveNumbersOfAnyLength)
{
    expectAll(found("R1A"), {"Linux version 99999999999999999999.2.3.R1A",
                             "Linux version 1." + std::string(300, '0') + "2.3.R1A",
                             "Linux version 1.2." + std::string(100000, '9') + ".R1A"});
    expectAll(found(Untouched), {"Linux version 1.2." + std::string(100000, '9')});
}

TEST(KernelBanner, IsTheFirstOne)
{
    expectAll(found("R1A"), {"Linux version 1.2.3.R1A Linux version 1.2.3.R2B"});
    expectAll(found(Untouched),
              {"Linux version %s Linux version 1.2.3.R2B", "Linux versionLinux version 1.2.3.R2B"});
}

TEST(KernelBanner, IsSearchedWithoutLookingAtAMismatchTwice)
{
    expectAll(failed(), {"LLinux version 1.2.3.R1A", "LLLLinux version 1.2.3.R1A",
                         "LiLinux version 1.2.3.R1A", "Linux Linux version 1.2.3.R1A",
                         "Linux versioLinux version 1.2.3.R1A"});
    expectAll(found("R1A"),
              {"LLLinux version 1.2.3.R1A", "LiLLinux version 1.2.3.R1A",
               "Linux versioxLinux version 1.2.3.R1A", "Linux Version Linux version 1.2.3.R1A"});
    expectAll(found("R2B"), {"Linux versioLinux version 1.2.3.R1A Linux version 1.2.3.R2B"});
}

TEST(KernelBanner, IsNothingLess)
{
    expectAll(failed(),
              {"linux version 1.2.3.R1A", "Linux versio", "Linux versio 1.2.3.R1A",
               "Linux  version 1.2.3.R1A", "Linux" + nul + "version 1.2.3.R1A", "L", "nothing"});
}

/** The rules in the plainest way; the kernel has no NUL. */
Answer plainAnswer(const std::string& contents)
{
    const std::string banner = "Linux version";
    std::size_t count = 0;
    for (std::size_t i = 0; i < contents.size(); ++i) {
        count = contents[i] == banner[count] ? count + 1 : 0;
        if (count == banner.size()) {
            char rstate[8] = "before";
            int numbers[3] = {};
            if (i + 2 <= contents.size()) {
                // NOLINTNEXTLINE(cert-err34-c): what does not match is part of the rule
                std::sscanf(contents.c_str() + i + 2, "%d.%d.%d.%7[a-zA-Z0-9]", &numbers[0],
                            &numbers[1], &numbers[2], rstate);
            }
            return found(rstate);
        }
    }
    return failed();
}

TEST(KernelBanner, IsReadByThePlainRulesInAnyKernel)
{
    // Separated by bars.
    std::istringstream list("Linux version|Linux version |Linux|L|Lin| version| "
                            "|n|x|.|R1A01|12|+|-|1.|2.3.|4.5.6.R|\n|versio");
    std::vector<std::string> pieces;
    for (std::string piece; std::getline(list, piece, '|');) {
        pieces.push_back(piece);
    }
    std::minstd_rand generator(20);
    int successes = 0;
    for (int round = 0; round < 3000; ++round) {
        std::string contents = "k";
        for (auto i = generator() % 12 + 1; i > 0; --i) {
            contents += pieces[generator() % pieces.size()];
        }
        const Answer expected = plainAnswer(contents);
        ASSERT_EQ(ask(gzip(contents)), expected) << contents;
        successes += expected.result == 0 ? 1 : 0;
        takeLines();
    }
    EXPECT_GT(successes, 500);
    EXPECT_LT(successes, 2500);
}

} // namespace
