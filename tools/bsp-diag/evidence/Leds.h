#ifndef TOOLS_DIAG_EVIDENCE_LEDS_H
#define TOOLS_DIAG_EVIDENCE_LEDS_H

#include "BoardFacts.h"
#include "evidence/Places.h"

#include <string>
#include <vector>

/** A front LED as the kernel shows it. */
struct LedEvidence
{
    std::string name;
    std::string directory;
    bool isThere = false;
    bool isTriggerWritable = false;
    /** The triggers that the kernel offers, the chosen one in brackets. */
    Reading<std::string> trigger;
    bool hasTrigger = false; /**< Whether they are with the one that the layer chooses. */
    bool hasState = false;   /**< There while the trigger is chosen. */
    bool isStateWritable = false;
    Reading<std::string> state;
};

std::vector<LedEvidence> lookAtLeds(const Places& places);

#endif
