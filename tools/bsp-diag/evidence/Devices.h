/**
 * @file
 * @brief The devices of the board: tightly coupled memory and system control registers.
 */
#ifndef TOOLS_DIAG_EVIDENCE_DEVICES_H
#define TOOLS_DIAG_EVIDENCE_DEVICES_H

#include "FileDescriptor.h"
#include "Reading.h"
#include "evidence/ProcessTable.h"

#include <cstdint>
#include <optional>
#include <string>

/** The tightly coupled memory, open for reading. */
class Dtcm
{
public:
    Dtcm();

    /** 0, or the error of opening it as the layer does: for reading and writing. */
    int openError() const { return m_openError; }
    /** 0, or the error of mapping it. */
    int mapError() const { return m_mapError; }
    /** Size of a file; nothing for a device, which does not say. */
    std::optional<std::size_t> fileSize() const { return m_fileSize; }
    /** What file it is, when it can be opened. */
    const std::optional<FileIdentity>& identity() const { return m_identity; }

    /** The warm area as it is now. */
    Reading<std::string> area() const;

private:
    syscalls::FileDescriptor openToRead() const;

    int m_openError = 0;
    int m_mapError = 0;
    std::optional<std::size_t> m_fileSize;
    bool m_isFile = false;
    syscalls::FileDescriptor m_file;
    std::optional<FileIdentity> m_identity;
};

/** Whether this process may lock as much memory as the layer locks; the limit in words. */
struct LockableMemory
{
    bool isEnough = false;
    std::string limit;
};
LockableMemory lockableMemory();

/** The cause of the last restart as the register has it. */
Reading<std::uint32_t> resetCause();

#endif
