#ifndef TESTS_INTERFACE_FAULTCASES_H
#define TESTS_INTERFACE_FAULTCASES_H

#include "FaultyProcess.h"

#include <string>
#include <vector>

namespace interface
{

/** All functions as they are, and some in circumstances that the tables of failures are about. */
const std::vector<Case>& faultCases();

/** The module that the case belongs to. */
std::string moduleOf(const Case& what);

} // namespace interface

#endif
