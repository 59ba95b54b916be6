/**
 * @file
 * @brief Files, their text and bytes, and a directory for them.
 */
#ifndef TESTS_SUPPORT_FILES_H
#define TESTS_SUPPORT_FILES_H

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

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

inline std::vector<std::string> linesOf(const std::string& text)
{
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

/** The words of a text. */
inline std::vector<std::string> wordsOf(const std::string& text)
{
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

/** The bytes of an object as they lie in memory. */
template <typename Type> std::string bytesOf(const Type& object)
{
    return {reinterpret_cast<const char*>(&object), sizeof object};
}

/** How many descriptors this process has open. */
inline std::size_t openDescriptors()
{
    const std::filesystem::directory_iterator entries("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

/** A directory of the test case's own, removed with all it holds at the end of the scope. */
class TemporaryDirectory
{
public:
    explicit TemporaryDirectory(
        const std::filesystem::path& parent = std::filesystem::temp_directory_path())
    {
        std::string name = (parent / "bsp-test-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr) {
            throw std::system_error(errno, std::generic_category(), name);
        }
        m_path = name;
    }
    ~TemporaryDirectory()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::filesystem::path& path() const { return m_path; }
    /** Path of an entry of the directory. */
    std::string file(const std::string& name) const { return (m_path / name).string(); }

private:
    std::filesystem::path m_path;
};

} // namespace testsupport

#endif
