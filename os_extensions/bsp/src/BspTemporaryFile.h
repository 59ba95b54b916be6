#ifndef BSP_SRC_BSPTEMPORARYFILE_H
#define BSP_SRC_BSPTEMPORARYFILE_H

#include "BspFileDescriptor.h"

#include <cstdio>

namespace os
{
namespace bsp
{

/**
 * An empty file of a fixed name, for reading and writing, that this object alone uses.
 *
 * Whoever wants a file of the same name at the same moment, in any process or thread, waits. The
 * file is removed with the object. One that a killed process left behind is taken over; anything
 * at that name that is no regular file, such as a symbolic link, is neither followed nor touched.
 */
class TemporaryFile
{
public:
    /** Makes the file; @p path must outlive the object. On failure there is no stream. */
    explicit TemporaryFile(const char* path);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    /** The stream on the file, or null. */
    std::FILE* stream() const noexcept { return m_stream; }

private:
    const char* const m_path;
    const FileDescriptor m_lock;
    std::FILE* const m_stream;
};

} // namespace bsp
} // namespace os

#endif
