#ifndef BSP_SRC_FIRMWARE_TEMPORARYFILE_H
#define BSP_SRC_FIRMWARE_TEMPORARYFILE_H

#include <cstdio>

namespace os::bsp
{

/**
 * An empty file of a fixed name, for reading and writing, that this object alone uses.
 *
 * It is always a new one, made, locked and at the end removed by this object, so nobody else, of
 * whatever user, has a say in what is in it. Whoever wants a file of the same name at the same
 * moment, in any process or thread, waits for the lock, but for ten seconds at most.
 *
 * A file that nobody has locked, left behind by a killed process, and one that is locked for longer
 * are replaced by those who may remove them: root, and the user whose file it is. Its user is not
 * disturbed by that. Anything at that name that is no regular file, such as a symbolic link, is
 * neither followed nor touched.
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
    std::FILE* const m_stream;
};

} // namespace os::bsp

#endif
