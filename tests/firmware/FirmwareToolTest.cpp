// The commands of the tool that look into images.

#include "Files.h"
#include "FirmwareImages.h"
#include "ManyThreads.h"
#include "Patterns.h"
#include "Program.h"
#include "RealImages.h"
#include "Sanitizers.h"

#include <gmock/gmock.h>

#include <csignal>

#include <sys/resource.h>
#include <unistd.h>

namespace
{

using namespace firmware;
using namespace testsupport;

const Outcome unknown = refusal("Unknown r-state\n");

class FirmwareTool : public testing::Test
{
protected:
    std::string fileWith(const std::string& contents) const
    {
        const std::string name = m_directory.file("image");
        writeFile(name, contents);
        return name;
    }

    static Outcome kernelRState(const std::string& image)
    {
        return tool("bsp", {"getKernelRState", image}).run();
    }
    static Outcome ubootProductInfo(const std::string& image)
    {
        return tool("bsp", {"getUbootProductInfo", image}).run();
    }

    const TemporaryDirectory m_directory;
};

TEST_F(FirmwareTool, AnswersFromRealImages)
{
    EXPECT_EQ(kernelRState(realKernel), answer("R1A01\n"));
    EXPECT_EQ(ubootProductInfo(realBootLoader), answer("PN-4402/17 R2B\n"));
}

TEST_F(FirmwareTool, ListsTheCommands)
{
    const std::string listing = tool("bsp").run().out;
    EXPECT_THAT(listing,
                testing::HasSubstr(
                    "bsp getKernelRState      Get kernel R-State (in text format: R1A01 etc.).\n"
                    "bsp getUbootProductInfo  Get U-boot product number and r-state.\n"));
}

TEST_F(FirmwareTool, TakesExactlyOneImage)
{
    const Outcome misuse = refusal("Error: valid argument is <image>\n");
    for (const char* command : {"getKernelRState", "getUbootProductInfo"}) {
        EXPECT_EQ(tool("bsp", {command}).run(), misuse);
        EXPECT_EQ(tool("bsp", {command, realKernel, realKernel}).run(), misuse);
    }
}

TEST_F(FirmwareTool, SaysThatItDoesNotKnow)
{
    for (const std::string& image :
         {std::string("/no/such/image"), std::string(""), m_directory.path().string()})
    {
        EXPECT_EQ(kernelRState(image), unknown);
        EXPECT_EQ(ubootProductInfo(image), unknown);
    }
    EXPECT_EQ(kernelRState(fileWith("no kernel")), unknown);
    EXPECT_EQ(ubootProductInfo("/proc/self/fd"), unknown);
    EXPECT_EQ(ubootProductInfo("/"), unknown);
}

TEST_F(FirmwareTool, PrintsTheRStateOfAKernelOrAnEmptyLine)
{
    const std::pair<std::string, std::string> cases[] = {
        {"Linux version 3.10.104", "\n"},
        {"Linux version 4.1.2.R12ABC01", "R12ABC0\n"}, // at most seven characters
    };
    for (const auto& [kernel, out] : cases) {
        EXPECT_EQ(kernelRState(fileWith(kernelImage(kernel))), answer(out)) << kernel;
    }
}

TEST_F(FirmwareTool, PrintsWhatABootLoaderDoesNotSayAsNotFound)
{
    const std::pair<std::string, std::string> cases[] = {
        {"", "Not found Not found\n"},
        {"R-state: R1", "Not found R1\n"},
        {"Product number: " + std::string(200, 'p'), std::string(79, 'p') + " Not found\n"},
        {"R-state: " + std::string(200, 'r'), "Not found " + std::string(79, 'r') + "\n"},
    };
    for (const auto& [bootLoader, out] : cases) {
        EXPECT_EQ(ubootProductInfo(fileWith(bootLoader)), answer(out)) << bootLoader;
    }
}

TEST_F(FirmwareTool, AnswersWithStandardInputClosed)
{
    Program program = tool("bsp");
    program.prepare = [] { ::close(STDIN_FILENO); };
    expectGolden(program, {{{"getKernelRState", realKernel}, answer("R1A01\n")},
                           {{"getUbootProductInfo", realBootLoader}, answer("PN-4402/17 R2B\n")}});
}

/** Limits the size of the files that this process writes. */
void limitFileSize(rlim_t size)
{
    const rlimit limit{size, size};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    ::signal(SIGXFSZ, SIG_IGN);
}

TEST_F(FirmwareTool, DoesNotKnowWhatItCannotInflateWhole)
{
    // The banner is in the part that can be written.
    const std::string image = fileWith(kernelImage("Linux version 1.2.3.R1A" + noise(100000)));
    EXPECT_EQ(kernelRState(image), answer("R1A\n"));
    Program limited = tool("bsp", {"getKernelRState", image});
    limited.prepare = [] { limitFileSize(8192); };
    EXPECT_EQ(limited.run(), unknown);
    limited.prepare = [] { limitFileSize(0); };
    EXPECT_EQ(limited.run(), unknown);
    EXPECT_FALSE(std::filesystem::exists("/dev/shm/zImage_tmp"));
}

TEST_F(FirmwareTool, DoesNotKnowAnImageLargerThanItsMemory)
{
    if (isSanitized("address") || isSanitized("thread") || !std::string(BSP_TEST_EMULATOR).empty())
    {
        GTEST_SKIP() << "sanitizers and emulators need memory without a limit";
    }
    const std::string image = fileWith("Product number: PN-1");
    std::filesystem::resize_file(image, 1U << 30U);
    Program limited = tool("bsp", {"getUbootProductInfo", image});
    limited.prepare = [] {
        const rlimit limit{256U << 20U, 256U << 20U};
        ::setrlimit(RLIMIT_AS, &limit);
    };
    EXPECT_EQ(limited.run(), unknown);

    // A kernel needs little memory besides the mapping of what it inflates to.
    limited.arguments = {"getKernelRState", realKernel};
    EXPECT_EQ(limited.run(), answer("R1A01\n"));
}

TEST_F(FirmwareTool, AnswersManyCallersAtOnce)
{
    constexpr std::size_t Callers = 6;
    inManyThreads(Callers, [this](std::size_t number) {
        const std::string rstate = "R" + std::to_string(number) + "A";
        const std::string image = m_directory.file(rstate);
        writeFile(image, kernelImage(noise(number * 50000) + "Linux version 2.6.34." + rstate));
        for (int round = 0; round < 20; ++round) {
            EXPECT_EQ(kernelRState(image), answer(rstate + '\n'));
        }
    });
}

/** The messages on standard error as "CHANNEL LEVEL TEXT"; numbers of descriptors as "N". */
std::vector<std::string> messages(const std::string& err)
{
    std::vector<std::string> result;
    for (std::string text : linesOf(err)) {
        const auto match =
            firstMatch(text, R"(^[^ ]+ ([^ ]+)\[[0-9]+\] ([0-9]) [^ ]+:[0-9]+ (.*)$)");
        if (!match.empty()) {
            text = match[1] + ' ' + match[2] + ' ' +
                   replaceMatches(match[3], R"(\(fd=[0-9]+\))", "(fd=N)");
        }
        result.push_back(text);
    }
    return result;
}

/** The tool with all messages of all channels on standard error. */
Program tracing(std::vector<std::string> arguments)
{
    Program program = tool("bsp", std::move(arguments));
    program.environment = {{"QELTRACE_OUTPUT", "stderr"}, {"QELTRACE_LEVEL", "*=7"}};
    return program;
}

TEST_F(FirmwareTool, TracesEachStepOfAKernel)
{
    const Outcome outcome = tracing({"getKernelRState", realKernel}).run();
    EXPECT_EQ(outcome.out, "R1A01\n");
    EXPECT_EQ(messages(outcome.err), courseOfRealKernel("N"));
}

TEST_F(FirmwareTool, TracesEachStepOfABootLoader)
{
    const Outcome outcome = tracing({"getUbootProductInfo", realBootLoader}).run();
    EXPECT_EQ(outcome.out, "PN-4402/17 R2B\n");
    EXPECT_EQ(messages(outcome.err), courseOfRealBootLoader());
}

TEST_F(FirmwareTool, TracesWhyItDoesNotKnow)
{
    const Outcome outcome = tracing({"getKernelRState", fileWith(gzip("no kernel"))}).run();
    EXPECT_EQ(outcome.status, 1);
    const auto lines = messages(outcome.err);
    ASSERT_GE(lines.size(), 2U);
    EXPECT_EQ(lines[lines.size() - 2], "bsp.core 1 Bsp_findLinuxVersion(): No Linux version found");
    EXPECT_EQ(lines.back(), "Unknown r-state");
}

} // namespace
