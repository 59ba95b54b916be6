/**
 * @file
 * @brief Asks for what a boot loader image says of itself.
 */
#ifndef TESTS_FIRMWARE_UBOOTQUERY_H
#define TESTS_FIRMWARE_UBOOTQUERY_H

#include "Bsp.h"
#include "Files.h"

#include <ostream>
#include <string>

namespace uboot
{

struct Answer
{
    int result;
    std::string productNumber;
    std::string rstate;
};

inline bool operator==(const Answer& left, const Answer& right)
{
    return left.result == right.result && left.productNumber == right.productNumber &&
           left.rstate == right.rstate;
}

inline std::ostream& operator<<(std::ostream& stream, const Answer& answer)
{
    return stream << answer.result << " \"" << answer.productNumber << "\" \"" << answer.rstate
                  << '"';
}

inline const Answer failed{-1, "before", "before"};

inline Answer askFile(const std::string& path, unsigned int numberSize = 80,
                      unsigned int rstateSize = 80)
{
    char productNumber[80] = "before";
    char rstate[80] = "before";
    const int result =
        Bsp_getUbootProductInfo(path.c_str(), productNumber, numberSize, rstate, rstateSize);
    return {result, productNumber, rstate};
}

inline Answer ask(const std::string& image, unsigned int numberSize = 80,
                  unsigned int rstateSize = 80)
{
    const testsupport::TemporaryDirectory directory;
    testsupport::writeFile(directory.file("u-boot"), image);
    return askFile(directory.file("u-boot"), numberSize, rstateSize);
}

} // namespace uboot

#endif
