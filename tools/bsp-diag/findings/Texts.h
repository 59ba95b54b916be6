#ifndef TOOLS_DIAG_FINDINGS_TEXTS_H
#define TOOLS_DIAG_FINDINGS_TEXTS_H

#include "findings/Finding.h"

#include <string>

/** A finding in words; "{key}" stands for a value of the finding. */
struct FindingText
{
    const char* name;
    const char* what;
    const char* evidence;
    const char* consequence; /**< For callers of the layer. */
    const char* cure;
};

/** The names of all findings, in the order in which they are looked for. */
std::vector<std::string> findingNames();

/** One line: what, the evidence, what follows, the cure. */
std::string lineOf(const Finding& finding);

Json jsonOf(const Finding& finding);

#endif
