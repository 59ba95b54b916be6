#ifndef TESTS_SUPPORT_FILES_H
#define TESTS_SUPPORT_FILES_H

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace testsupport
{

inline std::string readFile(const std::string& path)
{
    std::ifstream stream(path, std::ios::binary);
    if (!stream) {
        throw std::runtime_error("cannot read " + path);
    }
    return {std::istreambuf_iterator<char>(stream), {}};
}

inline void writeFile(const std::string& path, const std::string& contents)
{
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream.write(contents.data(), static_cast<std::streamsize>(contents.size()));
    if (!stream.flush()) {
        throw std::runtime_error("cannot write " + path);
    }
}

} // namespace testsupport

#endif
