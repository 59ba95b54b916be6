#ifndef TOOLS_BOARD_BOARDDRAFT_H
#define TOOLS_BOARD_BOARDDRAFT_H

#include <filesystem>

/** A directory in the making, beside the place that it is for; gone unless published. */
class BoardDraft
{
public:
    /** @throws Failure when the place is taken or nothing can be made there */
    explicit BoardDraft(const std::filesystem::path& place);
    ~BoardDraft();
    BoardDraft(const BoardDraft&) = delete;
    BoardDraft& operator=(const BoardDraft&) = delete;

    const std::filesystem::path& path() const { return m_path; }

    /** Moves the directory to its place. @throws Failure when that has been taken meanwhile */
    void publish();

private:
    std::filesystem::path m_place;
    std::filesystem::path m_workshop;
    std::filesystem::path m_path;
};

#endif
