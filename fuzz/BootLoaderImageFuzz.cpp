/**
 * @file
 * @brief Fuzzes boot loader images: where the labels stand, what follows them, and the room.
 */
#include "Bsp.h"
#include "Expect.h"
#include "KeptTrace.h"

#include <algorithm>

#include <sys/mman.h>
#include <unistd.h>

#include <fuzzer/FuzzedDataProvider.h>

namespace
{

using fuzz::expectEqual;

constexpr const char* ProductLabel = "Product number: ";
constexpr const char* RStateLabel = "R-state: ";

std::string anyImage(FuzzedDataProvider& input)
{
    std::string image(input.ConsumeIntegralInRange<std::size_t>(0, 70000),
                      static_cast<char>(input.ConsumeIntegral<char>()));
    for (int pieces = input.ConsumeIntegralInRange<int>(0, 5); pieces > 0; --pieces) {
        switch (input.ConsumeIntegralInRange<int>(0, 3)) {
        case 0:
            image += ProductLabel;
            break;
        case 1:
            image += RStateLabel;
            break;
        default:
            break;
        }
        image += input.ConsumeRandomLengthString(100);
    }
    return image;
}

/** The room after the value of that label was put into it. */
std::string model(const std::string& image, const std::string& label, std::size_t size,
                  std::vector<std::string>& messages)
{
    const std::size_t offset = image.find(label);
    std::string value = "Not found";
    if (offset != std::string::npos) {
        messages.push_back("6 Bsp_getUbootProductInfo(): \"" + label + "\" found at offset " +
                           std::to_string(offset));
        value = image.substr(offset + label.size());
    }
    value.resize(std::min(value.find('\0'), value.size()));
    value.resize(std::min(value.size(), size - 1));
    // What does not fit is cut before its first line is: both give the same text.
    std::string room = value;
    room.resize(size, '\0');
    value.resize(std::min(value.find('\n'), value.size()));
    if (value.size() < room.size()) {
        room[value.size()] = '\0';
    }
    const std::string name = label.substr(0, label.size() - 2);
    messages.push_back("5 Bsp_getUbootProductInfo(): " + name + " = " + value);
    return room;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    const auto productSize = input.ConsumeIntegralInRange<unsigned int>(1, 100);
    const auto rstateSize = input.ConsumeIntegralInRange<unsigned int>(1, 100);
    const std::string image = anyImage(input) + input.ConsumeRemainingBytesAsString();
    const int fd = ::memfd_create("image", 0);
    fuzz::expect("the image can be written",
                 ::write(fd, image.data(), image.size()) == static_cast<ssize_t>(image.size()));
    // The whole room is compared, and one byte behind it.
    std::string product(productSize + 1, '#');
    std::string rstate(rstateSize + 1, '#');

    fuzz::takeMessages();
    const int result =
        Bsp_getUbootProductInfo(("/proc/self/fd/" + std::to_string(fd)).c_str(), product.data(),
                                productSize, rstate.data(), rstateSize);
    std::vector<std::string> got = fuzz::takeMessages();
    got.erase(std::remove_if(got.begin(), got.end(),
                             [](const std::string& message) { return message[0] == '7'; }),
              got.end());

    std::vector<std::string> messages{
        "6 Bsp_getUbootProductInfo(): Start parsing for u-boot strings:"};
    expectEqual("the result", result, 0);
    expectEqual("the product number", product,
                model(image, ProductLabel, productSize, messages) + '#');
    expectEqual("the R-state", rstate, model(image, RStateLabel, rstateSize, messages) + '#');
    expectEqual("the trace", fuzz::joined(got), fuzz::joined(messages));
    const int next = ::dup(fd);
    expectEqual("the lowest free descriptor", next, fd + 1);
    ::close(next);
    ::close(fd);
    return 0;
}
