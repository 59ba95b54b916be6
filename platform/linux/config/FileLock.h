#ifndef PLATFORM_LINUX_CONFIG_FILELOCK_H
#define PLATFORM_LINUX_CONFIG_FILELOCK_H

namespace nxuconfig
{

/**
 * Lock of this process on a file, against the other processes; waits until it has it.
 *
 * A lock ends with its process, however that ends, and a forked process has no part in it. It also
 * ends when this process closes any descriptor of the file: nobody may do so meanwhile.
 */
class FileLock
{
public:
    /**
     * @param fd  the file; where it is open for reading only, the lock is shared with others that
     *            only read
     * @throws std::system_error when the file cannot be locked
     */
    explicit FileLock(int fd);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

private:
    const int m_fd;
};

} // namespace nxuconfig

#endif
