/**
 * @file
 * @brief Fuzzes command lines of the three groups on one board; a model says what comes back.
 */
#include "Command.h"
#include "Expect.h"
#include "FakeBoard.h"
#include "KeptTrace.h"
#include "models/RStateModel.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <sstream>

#include <unistd.h>

#include <fuzzer/FuzzedDataProvider.h>

int toolMain(int argc, char* argv[]);

namespace
{

using fuzz::expectEqual;
using Words = std::vector<std::string>;

const std::string KernelImage = BSP_TEST_DATA_DIR "/zImage-2.6.34.R1A01";
const std::string BootLoaderImage = BSP_TEST_DATA_DIR "/u-boot-R2B.bin";
const std::string Yellow = "/sys/class/leds/yellow/korvanta_state";

const Words LedNames{"yellow", "red", "green"};
const Words StateNames{"steady_off", "steady_on", "standby_hot", "standby_cold",
                       "slow",       "fast",      "interrupting"};
const Words IncrementNames{"Auto", "Revision", "Minor", "Major", "EndOfList"};
const Words KnownWords{"bsp",
                       "led",
                       "rstate",
                       "setState",
                       "increment",
                       "getHwRevision",
                       "getFpgaPath",
                       "getBoardId",
                       "getProductId",
                       "getControlBackplane",
                       "getSlotId",
                       "getDspType",
                       "getRadiolinkMode",
                       "setRadiolinkMode",
                       "clearRadiolinkMode",
                       "getTrafClientMode",
                       "setTrafClientMode",
                       "clearTrafClientMode",
                       "getTrafFpgaType",
                       "getKernelRState",
                       "getUbootProductInfo",
                       "Rl4",
                       "Rl5",
                       "yellow",
                       "red",
                       "green",
                       "yellowish",
                       "slow",
                       "fast",
                       "steady_on",
                       "interrupting",
                       "Auto",
                       "Revision",
                       "Minor",
                       "Major",
                       "EndOfList",
                       "R1A01",
                       "R1Z",
                       "R1A999",
                       "R1ZZZZ05",
                       "osprey2",
                       "pci",
                       "linnet",
                       "quail",
                       "-h",
                       "",
                       "/usr/bin/bsp",
                       "a/led",
                       "/",
                       KernelImage,
                       BootLoaderImage,
                       "/tmp/restart_cold",
                       "."};

/** What the tool wrote and its exit status. */
struct Outcome
{
    std::string out;
    std::string err;
    int status = 0;
};

std::string contents(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/** What the model knows of the board. */
struct Board
{
    std::string mode = "Rl5";             /**< In the store; empty for none. */
    std::optional<std::string> firstMode; /**< What the process asked for first. */
    std::string yellow;                   /**< The LED's state attribute. */
};

Board& board()
{
    static Board& instance = *new Board;
    return instance;
}

Outcome answer(const std::string& text)
{
    return {text + '\n', "", 0};
}

Outcome refusal(const std::string& text)
{
    return {"", text + '\n', 1};
}

std::string mode()
{
    if (!board().firstMode) {
        board().firstMode = board().mode == "Rl5" ? "Rl5" : "Rl4";
    }
    return *board().firstMode;
}

Outcome fpgaPath(const Words& arguments)
{
    const std::map<std::string, std::string> rows{
        {"linnet", "fwq402817_12/R9AC"}, {"mallard", "fwq402817_13/R9AC"},
        {"fulmar", "fwq402817_2/R9AC"},  {"gannet", "fwq402817_6/R9AC"},
        {"puffin", "fwq402817_9/R7F01"}, {"nightjar", "fwq402936_1/R9J"},
        {"osprey", "fwq402936_2/R9K"},   {"osprey2", "fwq402936_3/R9K"},
        {"quail", "fwq402936_11/R9J"},   {"redwing", "fwq402936_16/R1AG"},
        {"siskin", "fwq402936_17/R1AG"}, {"pci", "fwqd550263_3/R1B01"}};
    if (arguments.size() != 1) {
        return refusal("Error: valid argument are <FGPA name> [<HW revision>]");
    }
    const auto row = rows.find(arguments[0]);
    return answer(row == rows.end()
                      ? ""
                      : row->second + '/' + row->second.substr(0, row->second.find('/')) + ".bin");
}

Outcome setMode(const Words& arguments)
{
    if (arguments.size() != 1 || (arguments[0] != "Rl4" && arguments[0] != "Rl5")) {
        return refusal("Error: valid arguments are <Rl4 | Rl5>");
    }
    board().mode = arguments[0];
    return {};
}

Outcome image(const Words& arguments, const std::string& known, const std::string& text)
{
    if (arguments.size() != 1) {
        return refusal("Error: valid argument is <image>");
    }
    return arguments[0] == known ? answer(text) : refusal("Unknown r-state");
}

Outcome bsp(const std::string& function, const Words& arguments)
{
    const bool isTwoTdm =
        fakeboard::store().values[os::bsp::key::FpgaVariant] == os::bsp::value::fpgaVariant::TwoTdm;
    const std::map<std::string, std::string> fixed{
        {"getHwRevision", "4294967295"},
        {"getBoardId", "Unknown board revision"},
        {"getProductId", "KT4851_4"},
        {"getControlBackplane", "Ethernet"},
        {"getSlotId", "-1"},
        {"getDspType", "BCM85651"},
        {"getTrafFpgaType", isTwoTdm ? "Siskin" : "Redwing"}};
    if (const auto found = fixed.find(function); found != fixed.end()) {
        return answer(found->second);
    }
    if (function == "getFpgaPath") {
        return fpgaPath(arguments);
    }
    if (function == "getRadiolinkMode") {
        return answer(mode());
    }
    if (function == "getTrafClientMode") {
        return answer(mode() == "Rl5" ? "Lads" : "Rlps");
    }
    if (function == "setRadiolinkMode") {
        return setMode(arguments);
    }
    if (function == "getKernelRState") {
        return image(arguments, KernelImage, "R1A01");
    }
    if (function == "getUbootProductInfo") {
        // A file without labels is an answer, too.
        if (arguments == Words{KernelImage}) {
            return answer("Not found Not found");
        }
        return image(arguments, BootLoaderImage, "PN-4402/17 R2B");
    }
    if (function == "clearRadiolinkMode") {
        board().mode.clear();
    }
    return {};
}

/** The number of the first name that the text begins with. */
std::size_t numberOf(const Words& names, const std::string& text)
{
    std::size_t number = 0;
    while (number < names.size() && text.substr(0, names[number].size()) != names[number]) {
        ++number;
    }
    return number;
}

Outcome led(const Words& arguments)
{
    if (arguments.size() < 2) {
        Words lines{"Error: valid arguments are <LEDname> <state>", "Available LEDs are:"};
        lines.insert(lines.end(), LedNames.begin(), LedNames.end());
        lines.emplace_back("");
        lines.emplace_back("Available states are:");
        lines.insert(lines.end(), StateNames.begin(), StateNames.end());
        return {"", fuzz::joined(lines), 1};
    }
    const std::size_t number = numberOf(LedNames, arguments[0]);
    if (number == LedNames.size()) {
        return refusal("Error: Invalid LED (" + arguments[0] + ')');
    }
    const std::size_t state = numberOf(StateNames, arguments[1]);
    if (state == StateNames.size()) {
        return refusal("Error: Invalid state (" + arguments[1] + ')');
    }
    if (LedNames[number] != "yellow") {
        return refusal("Error: failed to set LED state.");
    }
    // An ordinary file stands for the attribute: a shorter text leaves the rest of a longer one.
    board().yellow.replace(0, StateNames[state].size(), StateNames[state]);
    return {};
}

Outcome rstate(const Words& arguments)
{
    if (arguments.empty()) {
        Words lines{"Error: valid arguments are <R-state> <increment type>",
                    "Available increment types are:"};
        lines.insert(lines.end(), IncrementNames.begin(), IncrementNames.end());
        return {"", fuzz::joined(lines), 1};
    }
    int type = 0;
    while (arguments.size() > 1 && type < 4 &&
           IncrementNames[static_cast<std::size_t>(type)] != arguments[1])
    {
        ++type;
    }
    Words messages;
    fuzz::RStateModel model = fuzz::RStateModel::ofText(arguments[0], messages);
    model.increment(type, messages);
    return answer(model.text);
}

Outcome dispatch(const Words& words)
{
    const std::string name =
        words.empty() ? "" : words[0].substr(words[0].rfind('/') + 1); // npos + 1 is 0
    const CommandGroup* group = nullptr;
    for (const CommandGroup& candidate : commandGroups) {
        group = candidate.name == name ? &candidate : group;
    }
    if (words.size() < 2) {
        Outcome outcome{"", "Usage: " + name + " <function> [arguments]\n", 1};
        for (std::size_t i = 0; group != nullptr && i < group->commands->size(); ++i) {
            const Command& command = (*group->commands)[i];
            std::string padded = command.name;
            padded.resize(std::max<std::size_t>(padded.size(), 20), ' ');
            outcome.out += name + ' ' + padded + ' ' + command.description + '\n';
        }
        return outcome;
    }
    bool isKnown = false;
    for (std::size_t i = 0; group != nullptr && i < group->commands->size(); ++i) {
        isKnown = isKnown || (*group->commands)[i].name == words[1];
    }
    if (!isKnown) {
        return refusal("Unknown function: " + words[1]);
    }
    const Words arguments(words.begin() + 2, words.end());
    if (name == "bsp") {
        return bsp(words[1], arguments);
    }
    return name == "led" ? led(arguments) : rstate(arguments);
}

Outcome run(Words words)
{
    std::vector<char*> argv;
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    std::ostringstream out;
    std::ostringstream err;
    std::streambuf* const formerOut = std::cout.rdbuf(out.rdbuf());
    std::streambuf* const formerErr = std::cerr.rdbuf(err.rdbuf());
    const int status = toolMain(static_cast<int>(words.size()), argv.data());
    std::cout.rdbuf(formerOut);
    std::cerr.rdbuf(formerErr);
    return {out.str(), err.str(), status};
}

std::string anyWord(FuzzedDataProvider& input)
{
    if (input.ConsumeIntegralInRange<int>(0, 3) != 0) {
        return KnownWords[input.ConsumeIntegralInRange<std::size_t>(0, KnownWords.size() - 1)];
    }
    return input.ConsumeRandomLengthString(30).c_str(); // words end with a NUL
}

Words anyWords(FuzzedDataProvider& input)
{
    Words words;
    for (int count = input.ConsumeIntegralInRange<int>(0, 5); count > 0; --count) {
        words.push_back(anyWord(input));
    }
    if (!words.empty() && input.ConsumeIntegralInRange<int>(0, 7) != 0) {
        words[0] = KnownWords[input.ConsumeIntegralInRange<std::size_t>(0, 2)];
    }
    return words;
}

/** Whether the words name a file of this machine that the model knows nothing of. */
bool namesOtherFile(const Words& words)
{
    for (const std::string& word : words) {
        if (word != KernelImage && word != BootLoaderImage &&
            std::filesystem::is_regular_file(word)) {
            return true;
        }
    }
    return false;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    os::bsp::NxuHwVariant& variant = fakeboard::variant(1);
    variant = {-1, 0, 11, {{0x54, 1, 2, 8, 2, 4, 1, 0}}};
    fakeboard::setCode(variant.code);
    fakeboard::store().values[os::bsp::key::RadiolinkMode] = os::bsp::value::radiolinkMode::Rl5;
    std::filesystem::create_directory("/sys/class/leds/yellow");
    std::filesystem::create_directory("/sys/class/leds/green");
    std::ofstream(Yellow) << "";
    std::ofstream("/sys/class/leds/green/trigger") << "";
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    fakeboard::store().values[os::bsp::key::FpgaVariant] =
        input.ConsumeBool() ? os::bsp::value::fpgaVariant::TwoTdm
                            : os::bsp::value::fpgaVariant::OneTdmRleEqpNoMlhc;
    const Words words = anyWords(input);
    if (namesOtherFile(words)) {
        return -1;
    }
    const Outcome wanted = dispatch(words);
    const Outcome got = run(words);
    expectEqual("the output", got.out, wanted.out);
    expectEqual("the errors", got.err, wanted.err);
    expectEqual("the status", got.status, wanted.status);
    expectEqual("the yellow LED", contents(Yellow), board().yellow);
    const std::string stored = fakeboard::store().values[os::bsp::key::RadiolinkMode];
    std::string wantedMode;
    if (!board().mode.empty()) {
        wantedMode = board().mode == "Rl5" ? os::bsp::value::radiolinkMode::Rl5
                                           : os::bsp::value::radiolinkMode::Rl4;
    }
    expectEqual("the stored mode", stored, wantedMode);
    fuzz::takeMessages();
    return 0;
}
