#ifndef TOOLS_DIAG_REPORT_INFOTEXT_H
#define TOOLS_DIAG_REPORT_INFOTEXT_H

#include "BoardFacts.h"

#include <ostream>

/** Writes the document of `info` as lines, each a subject and a fact. */
void writeInfo(std::ostream& out, const Json& document);

#endif
