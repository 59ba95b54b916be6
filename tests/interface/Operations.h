/**
 * @file
 * @brief Every function of the public interface, called once with ordinary arguments.
 */
#ifndef TESTS_INTERFACE_OPERATIONS_H
#define TESTS_INTERFACE_OPERATIONS_H

#include <array>
#include <string>
#include <type_traits>
#include <vector>

namespace interface
{

/** What a function answers, as words; takes nothing from the heap. */
class Answer
{
public:
    Answer& operator<<(const char* text);
    Answer& operator<<(long number);
    template <typename Enumeration>
    std::enable_if_t<std::is_enum_v<Enumeration>, Answer&> operator<<(Enumeration value)
    {
        return *this << static_cast<long>(value);
    }

    const char* text() const { return m_text.data(); }

private:
    std::array<char, 256> m_text{};
};

struct Operation
{
    std::string name;         /**< As the library exports it. */
    void (*perform)(Answer&); /**< May be called from any thread. */
};

const std::vector<Operation>& operations();

/** A board with a reset register that says warm, files for the images and LEDs, an empty area. */
void makeBoard();

/** What is left of the names and files that only live during calls, or as long as processes. */
std::vector<std::string> leftFiles();

constexpr const char* KernelImage = "/tmp/zImage";
constexpr const char* BootLoaderImage = BSP_TEST_DATA_DIR "/u-boot-R2B.bin";

} // namespace interface

#endif
