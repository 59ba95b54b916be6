#ifndef TOOLS_DIAG_EVIDENCE_STORE_H
#define TOOLS_DIAG_EVIDENCE_STORE_H

#include "BoardFacts.h"

#include <optional>
#include <string>

/** The settings that the layer asks for, or why the store does not say. */
Reading<facts::Settings> readSettings();

/** Why the store could not be changed, in words; empty when it could; nothing when none can tell.
 */
std::optional<std::string> whyNotWritable();

#endif
