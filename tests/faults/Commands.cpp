#include "Commands.h"

#include "Files.h"
#include "FirmwareImages.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <sstream>

namespace faults
{

namespace
{

namespace fs = std::filesystem;

// KT4851_4 of revision R1_P3, whose restart is warm without a marker; NXU4A has a reset register.
const std::string Nxu5Code{"\x54\1\2\10\2\4\2\0", 8};
const std::string Nxu4Code{"\x41\0\1\3\1\2\5\0", 8};

const std::string KernelImage = "/tmp/board/zImage";
const std::string BootLoaderImage = BSP_TEST_DATA_DIR "/u-boot-R2B.bin";

const Ending UnknownRState{"", "Unknown r-state\n", 1};
const Ending UnreadableStore{
    "",
    "terminate called after throwing an instance of 'std::runtime_error'\n"
    "  what():  cannot read the configuration store /tmp/board/settings: ...",
    134};

const Ending NoRoomForMutexes{"", "", 128 + SIGBUS};
const Ending NoMutexes{"", "", 128 + SIGSEGV};

Command bsp(const std::string& function, const std::string& argument, std::vector<Ending> endings,
            const std::string& code = Nxu5Code)
{
    std::vector<std::string> words{"bsp", function};
    if (!argument.empty()) {
        words.push_back(argument);
    }
    return {function + (code == Nxu4Code ? "Nxu4" : ""), words, code, std::move(endings)};
}

const Ending NoState{"", "Error: failed to set LED state.\n", 1};

Command led(const std::string& name, const std::string& light, std::vector<Ending> endings)
{
    return {name, {"led", "setState", light, "slow"}, Nxu5Code, std::move(endings)};
}

Ending answer(const std::string& text)
{
    return {text + '\n', "", 0};
}

std::string usage()
{
    return "Usage: led <function> [arguments]\n";
}

void writeTo(const fs::path& path, const std::string& bytes)
{
    testsupport::writeFile(path.string(), bytes);
}

/** The errors without what the trace says of its own file. */
std::string withoutTrace(std::string errors)
{
    const std::string complaint = "qeltrace: ignoring '/tmp/trace' in QELTRACE_OUTPUT: ";
    const std::size_t begin = errors.find(complaint);
    if (begin != std::string::npos) {
        errors.erase(begin, errors.find('\n', begin) + 1 - begin);
    }
    return errors;
}

/** Empties a folder that stays. */
void empty(const fs::path& folder)
{
    for (const auto& entry : fs::directory_iterator(folder)) {
        fs::remove_all(entry.path());
    }
}

} // namespace

const std::vector<Command>& commands()
{
    static const std::vector<Command> table{
        // Where the EEPROM cannot be read the code of row 14 stands for it, a KT4851_3.
        bsp("getHwRevision", "", {answer("1"), answer("0")}),
        bsp("getProductId", "", {answer("KT4851_4"), answer("KT4851_3")}),
        bsp("getBoardId", "", {answer("Unknown board revision")}),
        bsp("getControlBackplane", "", {answer("Ethernet")}),
        bsp("getDspType", "", {answer("BCM85651")}),
        bsp("getTrafFpgaType", "",
            {answer("Siskin"), answer("Quail"), answer("Redwing"), UnreadableStore}),
        bsp("getRadiolinkMode", "", {answer("Rl5"), answer("Rl4"), UnreadableStore}),
        bsp("getTrafClientMode", "", {answer("Lads"), answer("Rlps"), UnreadableStore}),
        bsp("setRadiolinkMode", "Rl4", {{"", "", 0}}),
        bsp("clearRadiolinkMode", "", {{"", "", 0}}),
        // An area of mutexes that cannot be made is used all the same.
        bsp("getSlotId", "", {answer("-1"), NoRoomForMutexes, NoMutexes}),
        bsp("getSlotId", "", {answer("-1"), NoRoomForMutexes, NoMutexes}, Nxu4Code),
        bsp("getFpgaPath", "pci", {answer("fwqd550263_3/R1B01/fwqd550263_3.bin")}),
        bsp("getKernelRState", KernelImage, {answer("R1A01"), UnknownRState}),
        // A read that gives 0 ends the image before its lines.
        bsp("getUbootProductInfo", BootLoaderImage,
            {answer("PN-4402/17 R2B"), answer("Not found Not found"), UnknownRState}),
        led("setStateAtOnce", "yellow", {{"", "", 0}, NoState}),
        // The LED has a trigger, which does not give it the attribute.
        led("setStateAfterTrigger", "red", {NoState, {"", "", 0}}),
        {"increment", {"rstate", "increment", "R1A999"}, Nxu5Code, {answer("R1B01")}},
        {"usage",
         {"led"},
         Nxu5Code,
         {{"led setState             Syntax: setState <ledname> <state>\n", usage(), 1}}},
    };
    return table;
}

void makeBoard(const Command& command)
{
    empty("/dev/shm");
    empty("/tmp");
    empty("/sys/class/leds");
    const fs::path board(BoardDirectory);
    fs::create_directory(board);
    writeTo(board / "eeprom", command.code);
    writeTo(board / "top.dtcm0", std::string(32768, '\0'));
    writeTo(board / "top.sys_ctrl0", std::string("\1\0\0\0", 4));
    writeTo(SettingsFile, Settings);
    static const std::string image =
        firmware::kernelImage(firmware::noise(20000) + "Linux version 2.6.34.R1A01 ");
    writeTo(KernelImage, image);
    const fs::path leds("/sys/class/leds");
    for (const char* light : {"yellow", "red"}) {
        fs::create_directory(leds / light);
        writeTo(leds / light / "trigger", "");
    }
    writeTo(leds / "yellow" / "korvanta_state", "");
}

bool endsSo(const ProgramRun& run, const Ending& ending)
{
    const std::string errors = withoutTrace(run.err);
    const std::string& wanted = ending.err;
    const bool isBegin = wanted.size() > 3 && wanted.compare(wanted.size() - 3, 3, "...") == 0;
    return run.out == ending.out && run.status == ending.status &&
           (isBegin ? errors.compare(0, wanted.size() - 3, wanted, 0, wanted.size() - 3) == 0
                    : errors == wanted);
}

std::string describe(const ProgramRun& run)
{
    return "status " + std::to_string(run.status) + "\nout: " + run.out + "\nerr: " + run.err;
}

std::ostream& operator<<(std::ostream& stream, const Command& command)
{
    return stream << command.name;
}

std::vector<std::string> leftFiles()
{
    std::vector<std::string> files;
    for (const char* folder : {"/tmp", "/dev/shm", "/sys/class/leds"}) {
        for (const auto& entry : fs::recursive_directory_iterator(folder)) {
            if (entry.is_regular_file() && entry.path() != TraceFile) {
                files.push_back(entry.path());
            }
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::vector<std::string> messages()
{
    std::vector<std::string> result;
    if (!fs::exists(TraceFile)) {
        return result;
    }
    for (const std::string& line : testsupport::linesOf(testsupport::readFile(TraceFile))) {
        // TIME CHANNEL[PROCESS] LEVEL FILE:LINE TEXT
        std::istringstream words(line);
        std::string time;
        std::string channel;
        std::string level;
        std::string place;
        std::string text;
        words >> time >> channel >> level >> place;
        std::getline(words, text);
        // One that could be written in part only ends where that was.
        if (!text.empty()) {
            result.push_back(channel.substr(0, channel.find('[')) + ' ' + level + text);
        }
    }
    return result;
}

} // namespace faults
