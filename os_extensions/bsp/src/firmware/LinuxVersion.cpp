#include "BspTrace.h"
#include "ErrnoText.h"
#include "HvxMessage.h"
#include "firmware/KernelImage.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>

#include <sys/mman.h>
#include <sys/stat.h>

namespace os::bsp
{

namespace
{

/** A file's bytes, mapped for reading; there are none when it cannot be mapped. */
class Mapping
{
public:
    Mapping(int fd, off_t size)
    {
        if (static_cast<std::uintmax_t>(size) > PTRDIFF_MAX) {
            return;
        }
        const auto length = static_cast<std::size_t>(size);
        void* address = ::mmap(nullptr, length, PROT_READ, MAP_PRIVATE, fd, 0);
        if (address != MAP_FAILED) {
            m_bytes = {static_cast<const char*>(address), length};
        }
    }
    ~Mapping()
    {
        if (isValid()) {
            const syscalls::ErrnoKeeper errnoKeeper;
            // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): munmap's interface
            ::munmap(const_cast<char*>(m_bytes.data()), m_bytes.size());
        }
    }
    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;

    bool isValid() const { return m_bytes.data() != nullptr; }
    std::string_view bytes() const { return m_bytes; }

private:
    std::string_view m_bytes;
};

off_t sizeOf(int fd)
{
    struct stat file = {};
    return ::fstat(fd, &file) == 0 ? file.st_size : -1;
}

/**
 * The bytes behind the first banner.
 *
 * A byte that does not continue the banner is not looked at again as its possible beginning: in
 * "LLinux version" there is none. Every reader of these images keeps to that.
 */
std::optional<std::string_view> findBanner(std::string_view bytes)
{
    constexpr std::string_view Banner = "Linux version";
    std::size_t i = bytes.find(Banner.front());
    while (i != std::string_view::npos) {
        std::size_t matched = 0;
        while (matched < Banner.size() && i < bytes.size() && bytes[i] == Banner[matched]) {
            ++matched;
            ++i;
        }
        if (matched == Banner.size()) {
            return bytes.substr(i);
        }
        i = bytes.find(Banner.front(), i + 1);
    }
    return std::nullopt;
}

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

bool isLetterOrDigit(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           isDigit(character);
}

bool isSpace(char character)
{
    return character == ' ' || (character >= '\t' && character <= '\r');
}

/** The text's leading characters of a kind, taken off the text. */
template <typename Kind> std::string_view take(std::string_view& text, Kind isKind)
{
    const auto end = std::find_if_not(text.begin(), text.end(), isKind);
    const std::string_view taken = text.substr(0, static_cast<std::size_t>(end - text.begin()));
    text.remove_prefix(taken.size());
    return taken;
}

/** Takes what scanf takes for "%d.", which may have blanks and a sign in front. */
bool takeNumberAndDot(std::string_view& text)
{
    take(text, isSpace);
    if (!text.empty() && (text.front() == '+' || text.front() == '-')) {
        text.remove_prefix(1);
    }
    if (take(text, isDigit).empty() || text.empty() || text.front() != '.') {
        return false;
    }
    text.remove_prefix(1);
    return true;
}

/** The fourth field of a kernel version, "%d.%d.%d.%7[a-zA-Z0-9]"; empty when it has none. */
std::string_view rstateIn(std::string_view version)
{
    for (int field = 0; field < 3; ++field) {
        if (!takeNumberAndDot(version)) {
            return {};
        }
    }
    return take(version, isLetterOrDigit).substr(0, KernelRStateSize - 1);
}

} // namespace

int Bsp_findLinuxVersion(std::FILE* file, char* rstate)
{
    TRACE_ENTER(bspTrace);
    if (std::fseek(file, 0, SEEK_SET) != 0) {
        TRACE_MESSAGE(bspTrace, trace::Error,
                      "fseek failed with errno = " << syscalls::errnoText(errno));
    }
    const int fd = ::fileno(file);
    const off_t size = sizeOf(fd);
    if (size == -1) {
        TRACE_MESSAGE(bspTrace, trace::Error,
                      "fstat failed with errno = " << syscalls::errnoText(errno));
    }
    const Mapping mapping(fd, size);
    if (!mapping.isValid()) {
        TRACE_MESSAGE(bspTrace, trace::Error, "unable to mmap temp image");
    }
    const std::optional<std::string_view> rest = findBanner(mapping.bytes());
    if (!rest) {
        TRACE_MESSAGE(bspTrace, trace::Error, "No Linux version found");
        return -1;
    }
    // One character, whatever it is, separates the banner and the version.
    const std::string_view found = rstateIn(rest->substr(std::min<std::size_t>(1, rest->size())));
    if (!found.empty()) {
        std::memcpy(rstate, found.data(), found.size());
        rstate[found.size()] = '\0';
    }
    return 0;
}

} // namespace os::bsp
