/**
 * @file
 * @brief What is looked for, subject by subject: each judges the evidence and adds what it finds.
 */
#ifndef TOOLS_DIAG_FINDINGS_SUBJECTS_H
#define TOOLS_DIAG_FINDINGS_SUBJECTS_H

#include "evidence/Evidence.h"
#include "findings/Finding.h"

void judgeEeprom(const Evidence& evidence, Diagnosis& diagnosis);
void judgeDtcm(const Evidence& evidence, Diagnosis& diagnosis);
void judgeRestart(const Evidence& evidence, Diagnosis& diagnosis);
void judgeSemaphore(const Evidence& evidence, Diagnosis& diagnosis);
void judgeMutexes(const Evidence& evidence, Diagnosis& diagnosis);
void judgeSlot(const Evidence& evidence, Diagnosis& diagnosis);
void judgeTable(const Evidence& evidence, Diagnosis& diagnosis);
void judgeKernelImage(const Evidence& evidence, Diagnosis& diagnosis);
void judgeSettings(const Evidence& evidence, Diagnosis& diagnosis);
void judgeLeds(const Evidence& evidence, Diagnosis& diagnosis);
void judgeSystem(const Evidence& evidence, Diagnosis& diagnosis);

/** All of them. */
Diagnosis diagnose(const Evidence& evidence);

#endif
