#ifndef TOOLS_SIMULATOR_REPORT_COMPLAINT_H
#define TOOLS_SIMULATOR_REPORT_COMPLAINT_H

#include <iostream>
#include <string_view>

/** Tells the user what went wrong, as a line of standard error. */
inline void complain(std::string_view message)
{
    std::cerr << "bsp-board: " << message << std::endl;
}

#endif
