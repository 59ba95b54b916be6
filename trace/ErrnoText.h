#ifndef TRACE_ERRNOTEXT_H
#define TRACE_ERRNOTEXT_H

#include <string>

namespace trace
{

/** The system's text for an errno value; unlike strerror it may be called from any thread. */
std::string errnoText(int error);

} // namespace trace

#endif
