#ifndef TESTS_FIRMWARE_REALIMAGES_H
#define TESTS_FIRMWARE_REALIMAGES_H

#include <string>
#include <vector>

namespace firmware
{

/** Real images, the kernel of R1A01 and the boot loader of R2B. */
extern const std::string realKernel;
extern const std::string realBootLoader;

/** What is traced of them; their descriptor has that number. */
std::vector<std::string> courseOfRealKernel(const std::string& fd);
std::vector<std::string> courseOfRealBootLoader();

} // namespace firmware

#endif
