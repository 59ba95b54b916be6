#include "Operations.h"

#include "FakeBoard.h"
#include "FakeDevices.h"
#include "Files.h"
#include "FirmwareImages.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace interface
{

void makeBoard()
{
    if (std::getenv("BSP_TEST_PRIVATE_BOARD") == nullptr) {
        throw std::logic_error("this is not a private board");
    }
    for (const char* folder : {"/dev/shm", "/tmp", "/sys/class/leds"}) {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            std::filesystem::remove_all(entry.path());
        }
    }
    // NXU4A with a Gannet or a Fulmar; its reset register says warm.
    const os::bsp::NxuHwCode code{{0, 0, 1, 0, 0, 2, 0, 0}};
    constexpr std::uint32_t Warm = 1;
    fakeboard::variant(1).code = code;
    fakeboard::variant(1).productCode = 1;
    fakeboard::setCode(code);
    fakedevices::control().word = Warm;
    // KT4851_3, for when the EEPROM cannot be read.
    fakeboard::variant(14).code = {{0, 1, 2, 8, 0, 4, 0, 0}};
    fakeboard::variant(14).productCode = 9;
    fakeboard::variant(14).hwRevision = 1;
    // NXU4A, for codes that no variant has.
    fakeboard::variant(0).productCode = 1;
    testsupport::writeFile(fakedevices::dtcm().path, std::string(32768, '\0'));
    static const std::string image =
        firmware::kernelImage(firmware::noise(20000) + "Linux version 2.6.34.R1A01 ");
    testsupport::writeFile(KernelImage, image);
    for (const char* led : {"yellow", "red", "green"}) {
        const std::filesystem::path folder = std::filesystem::path("/sys/class/leds") / led;
        std::filesystem::create_directory(folder);
        testsupport::writeFile(folder / "korvanta_state", "");
        testsupport::writeFile(folder / "trigger", "");
    }
}

std::vector<std::string> leftFiles()
{
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/shm")) {
        files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace interface
