/**
 * @file
 * @brief Writes what is in the memory of a device that can be mapped, and not be read, to standard
 *        output: dump DEVICE BYTES
 */
#include <cstdio>
#include <iostream>
#include <string>

#include <fcntl.h>
#include <sys/mman.h>

int main(int argc, char* argv[])
{
    if (argc != 3) {
        std::cerr << "usage: dump DEVICE BYTES\n";
        return 2;
    }
    const std::size_t size = std::stoul(argv[2]);
    const int device = ::open(argv[1], O_RDONLY);
    void* const memory = ::mmap(nullptr, size, PROT_READ, MAP_SHARED, device, 0);
    if (memory == MAP_FAILED) {
        std::perror(argv[1]);
        return 1;
    }
    std::cout.write(static_cast<const char*>(memory), static_cast<std::streamsize>(size));
}
