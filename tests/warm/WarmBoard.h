/**
 * @file
 * @brief The boards of the tests in this folder, on the fake platform libraries.
 */
#ifndef TESTS_WARM_WARMBOARD_H
#define TESTS_WARM_WARMBOARD_H

#include "FakeBoard.h"
#include "FakeDevices.h"
#include "Files.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace warmboard
{

constexpr int Nxu4Word = 0;
constexpr int Nxu5Word = 1;
constexpr int Nxu4aProduct = 1;
constexpr int Kt4851_4Product = 11;

enum ResetCause : std::uint32_t
{
    Cold,
    Warm,
    Watchdog,
    Unknown
};

inline void use(int platformWord, int productCode)
{
    os::bsp::NxuHwCode code{};
    code.word[1] = platformWord;
    fakeboard::variant(1).code = code;
    fakeboard::variant(1).productCode = productCode;
    fakeboard::setCode(code);
}

/** A board that has a register with the cause of the last restart. */
inline void useNxu4(std::uint32_t resetCause)
{
    use(Nxu4Word, Nxu4aProduct);
    fakedevices::control().word = resetCause;
}

/** The area as it is before any process uses it. */
inline void fillArea(const std::string& contents)
{
    testsupport::writeFile(fakedevices::dtcm().path, contents);
}

inline std::string area()
{
    return testsupport::readFile(fakedevices::dtcm().path);
}

/** An area with a name at the beginning of some blocks, and garbage everywhere else. */
inline std::string areaWith(const std::vector<std::pair<std::size_t, std::string>>& names)
{
    std::string contents(32768, 'x');
    for (std::size_t block = 0; block < 32; ++block) {
        contents[block * 1024] = '\0';
    }
    for (const auto& [block, name] : names) {
        contents.replace(block * 1024, name.size() + 1, name.c_str(), name.size() + 1);
    }
    return contents;
}

/** An area without a free block. */
inline std::string fullArea()
{
    std::vector<std::pair<std::size_t, std::string>> names;
    for (std::size_t i = 0; i < 32; ++i) {
        names.emplace_back(i, std::to_string(i));
    }
    return areaWith(names);
}

inline std::string zeros()
{
    return std::string(32768, '\0');
}

} // namespace warmboard

#endif
