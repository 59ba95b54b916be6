#ifndef TESTS_SIMULATOR_RUNTESTBASE_H
#define TESTS_SIMULATOR_RUNTESTBASE_H

#include "SimulatorTest.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <thread>

/** Runs commands on a board "b", isolated as the parameter says: with that word of `run`, if any.
 */
class RunTest : public SimulatorTest, public testing::WithParamInterface<std::string>
{
protected:
    void SetUp() override { expectQuiet({"create", "b", "--product", "KT4851_4"}); }

    static bool isProot() { return GetParam() == "--isolate=proot"; }

    testsupport::Program boardTool(Words words) const
    {
        if (!words.empty() && words.front() == "run" && !GetParam().empty()) {
            words.insert(words.begin() + 1, GetParam());
        }
        testsupport::Program program = SimulatorTest::boardTool(std::move(words));
        // The search for leaks traces, as proot does, and only one can.
        program.environment["ASAN_OPTIONS"] = "detect_leaks=0";
        return program;
    }

    /** `bsp-board run b -- sh -c SCRIPT sh ARGUMENTS...` */
    testsupport::Program shell(const std::string& script, const Words& arguments = {}) const
    {
        Words words{"run", file("b"), "--", "sh", "-c", script, "sh"};
        words.insert(words.end(), arguments.begin(), arguments.end());
        return boardTool(words);
    }

    static void expectOutput(const testsupport::Program& program, const std::string& output)
    {
        EXPECT_EQ(program.run(), testsupport::answer(output));
    }

    static void expectFailure(const testsupport::Program& program, const std::string& complaint,
                              int status)
    {
        EXPECT_EQ(program.run(), testsupport::refusal(complaint, status));
    }

    void writeScript(const std::string& path, const std::string& text) const
    {
        testsupport::writeFile(path, "#!/bin/sh\n" + text + '\n');
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    }

    /** Gives the board a program "greet" of its own in its directory of that path in /tmp. */
    std::filesystem::path plant(const std::filesystem::path& directory,
                                const std::string& text) const
    {
        const std::filesystem::path own = file("b/tmp") / directory.filename();
        std::filesystem::create_directory(own);
        writeScript(own / "greet", text);
        return own;
    }

    /** A board's command, called in "/", with the host's programs of that directory first. */
    testsupport::Program boardToolInRoot(const Words& words, const std::string& programs) const
    {
        testsupport::Program program = boardTool(words);
        program.directory = "/";
        program.environment["PATH"] = programs + ':' + std::getenv("PATH");
        return program;
    }

    void waitForFile(const std::string& name) const
    {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (!std::filesystem::exists(file(name))) {
            ASSERT_LT(std::chrono::steady_clock::now(), limit) << "no file " << name;
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }
};

/** The cases' names: by the isolation that is asked for. */
inline std::string nameOfIsolation(const testing::TestParamInfo<std::string>& info)
{
    return info.param.empty() ? "chosen" : info.param.substr(info.param.find('=') + 1);
}

#endif
