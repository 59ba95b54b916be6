/**
 * @file
 * @brief The steps of Led_setState. Each gets the LED's name, for the path of its files, and its
 * number, for messages.
 */
#ifndef BSP_SRC_LEDSTEPS_H
#define BSP_SRC_LEDSTEPS_H

#include <array>

namespace led
{

/** A path and its NUL. */
using Path = std::array<char, 64>;

/**
 * Builds the path of a file of an LED.
 *
 * @param path  receives the path, or as much of it as fits
 * @return whether all of it fits
 */
bool buildPath(Path& path, const char* name, const char* file);

/**
 * Opens the LED's state attribute, after enabling the LED's trigger where it is not there.
 * @return a descriptor, or -1 with errno set
 */
int Led_open(unsigned int led, const char* name);

/**
 * Enables the trigger that gives the LED its state attribute.
 * @return 0, or -1 with errno set
 */
int Led_enableTrigger(unsigned int led, const char* name);

/**
 * Writes a text, going on after a partial write.
 * @return what the last write returned: -1 with errno set, 0, or the bytes that it wrote
 */
int Led_write(int fd, const char* buf, unsigned int size);

/**
 * Closes a descriptor.
 * @return 0, or -1 with errno set
 */
int Led_close(int fd);

} // namespace led

#endif
