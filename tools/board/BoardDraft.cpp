#include "BoardDraft.h"

#include "Failure.h"

#include <cstdio>
#include <cstdlib>

#include <sys/stat.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;

constexpr mode_t DirectoryMode = 0777;

Failure cannotCreate(const fs::path& place, int error)
{
    return {"cannot create '" + place.string() + "'", error};
}

} // namespace

BoardDraft::BoardDraft(const fs::path& place)
    : m_place(place.has_filename() ? place : place.parent_path())
{
    std::error_code ignored;
    if (fs::exists(fs::symlink_status(m_place, ignored))) {
        throw cannotCreate(m_place, EEXIST);
    }
    std::string workshop = (m_place.parent_path() / ".bsp-board-XXXXXX").string();
    if (::mkdtemp(workshop.data()) == nullptr) {
        throw cannotCreate(m_place, errno);
    }
    m_workshop = workshop;
    m_path = m_workshop / "board";
    if (::mkdir(m_path.c_str(), DirectoryMode) != 0) {
        const int error = errno;
        ::rmdir(m_workshop.c_str());
        throw cannotCreate(m_place, error);
    }
}

BoardDraft::~BoardDraft()
{
    std::error_code ignored;
    fs::remove_all(m_workshop, ignored);
}

void BoardDraft::publish()
{
    // A directory of one's own, still empty, is the only thing that the renaming replaces.
    if (::mkdir(m_place.c_str(), DirectoryMode) != 0) {
        throw cannotCreate(m_place, errno);
    }
    if (std::rename(m_path.c_str(), m_place.c_str()) != 0) {
        const int error = errno;
        ::rmdir(m_place.c_str());
        throw cannotCreate(m_place, error);
    }
}
