#ifndef TOOLS_COMMON_SHAREDMEMORY_H
#define TOOLS_COMMON_SHAREDMEMORY_H

#include "InflatedImage.h"
#include "WarmLayout.h"

#include <string_view>

/** The files in the shared memory that are the layer's. */
namespace sharedname
{

/** What stands behind the last slash. */
constexpr const char* lastPartOf(std::string_view path)
{
    return path.substr(path.rfind('/') + 1).data();
}

constexpr const char* Semaphore = "sem.DtcmDbSharedSem";
static_assert(std::string_view(Semaphore).substr(std::string_view("sem.").size()) ==
                  lastPartOf(os::bsp::dtcm::SemaphoreName),
              "the C library puts this before a semaphore's name");
constexpr const char* SyncArea = lastPartOf(os::bsp::dtcm::SyncAreaName);
constexpr const char* KernelImage = lastPartOf(os::bsp::InflatedImage);

} // namespace sharedname

#endif
