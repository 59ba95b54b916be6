#ifndef TOOLS_SIMULATOR_BOARD_STAGINGDIRECTORY_H
#define TOOLS_SIMULATOR_BOARD_STAGINGDIRECTORY_H

#include "board/Directory.h"

#include <string>

/**
 * A board's directory in the making, beside the place that it is for; gone unless published.
 *
 * It is held (see hold) as long as it is worked on. A staging directory that nobody holds is of a
 * program that was killed; the next one beside it takes it away.
 */
class StagingDirectory
{
public:
    /** @throws Failure when the place is taken or nothing can be made there */
    explicit StagingDirectory(const std::filesystem::path& place);
    ~StagingDirectory();
    StagingDirectory(const StagingDirectory&) = delete;
    StagingDirectory& operator=(const StagingDirectory&) = delete;

    /** The directory, which messages call by its place. */
    const Directory& directory() const { return m_directory; }

    /**
     * Moves the directory to its place, where nothing or an empty directory may be.
     * @throws Failure when that is not so
     */
    void publish();

private:
    Directory makeStaging();

    std::filesystem::path m_place;
    Directory m_parent;
    std::string m_name; /**< Of the staging directory; empty when it is published. */
    Directory m_directory;
};

#endif
