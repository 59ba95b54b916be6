#ifndef TOOLS_COMMON_SHAREDMEMORY_H
#define TOOLS_COMMON_SHAREDMEMORY_H

/** The files in the shared memory that are the layer's. */
namespace sharedname
{
constexpr const char* Semaphore = "sem.DtcmDbSharedSem";
constexpr const char* SyncArea = "DtcmSync";
constexpr const char* KernelImage = "zImage_tmp";
} // namespace sharedname

#endif
