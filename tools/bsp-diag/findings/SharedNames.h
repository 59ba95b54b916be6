/**
 * @file
 * @brief What is judged alike for each of the shared names.
 */
#ifndef TOOLS_DIAG_FINDINGS_SHAREDNAMES_H
#define TOOLS_DIAG_FINDINGS_SHAREDNAMES_H

#include "evidence/Evidence.h"
#include "findings/Finding.h"

#include <string>

/** Adds SUBJECT-link, SUBJECT-unused, SUBJECT-mode and SUBJECT-former, whichever are found. */
void judgeName(const SharedName& name, const std::string& subject, Diagnosis& diagnosis);

/** What a mutex's holder is, and whether it lives and can be the one. */
struct Holder
{
    bool isAlive;
    std::string text;
};

/**
 * @param file  what the holder must have mapped; nothing when it is not known
 */
Holder holderOf(const Evidence& evidence, pid_t thread, const std::optional<FileIdentity>& file);

#endif
