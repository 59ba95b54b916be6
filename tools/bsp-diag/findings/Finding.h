#ifndef TOOLS_DIAG_FINDINGS_FINDING_H
#define TOOLS_DIAG_FINDINGS_FINDING_H

#include "BoardFacts.h"

#include <map>
#include <string>
#include <vector>

/** Something that is wrong. Its texts are in a table; see findings/Texts.h. */
struct Finding
{
    std::string name;
    /** What the texts need: the evidence. */
    std::map<std::string, std::string> values;
};

struct Diagnosis
{
    void add(std::string name, std::map<std::string, std::string> values = {})
    {
        findings.push_back({std::move(name), std::move(values)});
    }
    /** Remarks on something that this user cannot see. */
    void miss(std::string what) { notLookedAt.push_back(std::move(what)); }

    std::vector<Finding> findings;
    std::vector<std::string> notLookedAt;
    /** Whether so much could not be looked at that "nothing found" would say nothing. */
    bool isBlind = false;
};

#endif
