#ifndef TESTS_FAULTS_PLAUSIBLEFAULTS_H
#define TESTS_FAULTS_PLAUSIBLEFAULTS_H

#include "TracedProcess.h"

namespace faults
{

/** All that can plausibly happen at each of the calls, one fault at a time. */
std::vector<Fault> plausibleFaults(const std::vector<Call>& calls);

/** Whether the call writes to a standard stream. */
bool writesToStream(const Call& call);

/** Whether the call takes a name away. */
bool removesName(const Call& call);

/** The call and what is done to it, for messages. */
std::string describe(const Call& call, const Fault& fault);

} // namespace faults

#endif
