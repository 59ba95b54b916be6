#ifndef TOOLS_DIAG_EVIDENCE_STORE_H
#define TOOLS_DIAG_EVIDENCE_STORE_H

#include <optional>
#include <string>

/** Why the store could not be changed, in words; empty when it could; nothing when none can tell.
 */
std::optional<std::string> whyNotWritable();

#endif
