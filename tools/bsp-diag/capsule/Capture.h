#ifndef TOOLS_DIAG_CAPSULE_CAPTURE_H
#define TOOLS_DIAG_CAPSULE_CAPTURE_H

#include "Capsule.h"
#include "evidence/Evidence.h"

#include <chrono>

/**
 * Takes from a board what goes into a capsule.
 *
 * The warm area is taken under its lock, which is waited for within a limit; nothing is created.
 */
capsule::Contents captureContents(const Evidence& evidence, std::chrono::milliseconds limit);

#endif
