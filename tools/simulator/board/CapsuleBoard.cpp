#include "board/CapsuleBoard.h"

#include "Led.h"
#include "SharedMemory.h"
#include "SharedMutex.h"
#include "WarmArea.h"
#include "WarmLayout.h"
#include "board/Board.h"
#include "board/BoardState.h"
#include "board/Directory.h"
#include "report/Failure.h"

#include <cerrno>
#include <cstring>

#include <pthread.h>
#include <semaphore.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

namespace dtcm = os::bsp::dtcm;

using Remarks = std::vector<std::string>;

/** A free mutex for the processes of this machine. */
pthread_mutex_t sharedMutex()
{
    pthread_mutex_t mutex;
    std::memset(&mutex, 0, sizeof mutex);
    os::bsp::initSharedMutex(&mutex);
    return mutex;
}

template <typename Object> std::string bytesOf(const Object& object)
{
    return {reinterpret_cast<const char*>(&object), sizeof object};
}

std::string semaphoreBytes(std::uint32_t value)
{
    sem_t semaphore;
    std::memset(&semaphore, 0, sizeof semaphore);
    if (::sem_init(&semaphore, 1, value) != 0) {
        throw Failure("the capsule's semaphore has a value that is none", errno);
    }
    return bytesOf(semaphore);
}

/** The same area, with the slot id's object as programs of this machine make it. */
std::string areaForThisMachine(const std::string& area, Remarks& remarks)
{
    const WarmArea table(area);
    const auto slot = table.find(dtcm::SlotObjectName);
    if (!slot) {
        return area;
    }
    dtcm::SlotObject object;
    std::memset(&object, 0, sizeof object);
    object.slotId = *table.slotId();
    object.mutex = sharedMutex();
    std::string data = bytesOf(object);
    data.resize(dtcm::MaxObjectSize);
    std::string result = area;
    result.replace(slot->offset + dtcm::NameSize, dtcm::MaxObjectSize, data);
    remarks.emplace_back("the mutex of the slot id, which is made anew and free");
    return result;
}

void remove(const Directory& directory, const char* entry)
{
    if (::unlinkat(directory.fd(), entry, 0) != 0 && errno != ENOENT) {
        throw Failure("cannot remove '" + directory.nameOf(entry).string() + "'", errno);
    }
}

/** Puts a file in place of what is there. */
void put(const Directory& directory, const char* entry, const std::string& bytes)
{
    remove(directory, entry);
    directory.createFile(entry, bytes);
}

template <typename Value>
void putIfKnown(const Directory& board, const char* entry, const Reading<Value>& value,
                const std::string& bytes, const char* what, Remarks& remarks)
{
    if (value.isKnown()) {
        put(board, entry, bytes);
    } else {
        remove(board, entry);
        remarks.push_back(std::string(what) + ": " + value.reason());
    }
}

Directory need(const Directory& board, const char* entry)
{
    std::optional<Directory> directory = board.find(entry);
    if (!directory) {
        throw Failure("there is no '" + board.nameOf(entry).string() + "'");
    }
    return std::move(*directory);
}

bool isLed(const std::string& name)
{
    for (unsigned int led = 0; led < NoOfLeds; ++led) {
        if (name == Led_objectToName(led)) {
            return true;
        }
    }
    return false;
}

void putLeds(const Directory& board, const std::vector<capsule::Led>& states, Remarks& remarks)
{
    const Directory leds = need(board, entry::Leds);
    for (const capsule::Led& state : states) {
        const std::string what = "LED " + state.name;
        // A name becomes a path, so only those that boards have do.
        if (!isLed(state.name)) {
            remarks.push_back(what + ": there is none of that name");
            continue;
        }
        const Directory led = need(leds, state.name.c_str());
        putIfKnown(led, hardware::LedTriggerFile, state.trigger,
                   state.trigger.isKnown() ? *state.trigger : "", what.c_str(), remarks);
        putIfKnown(led, hardware::LedStateFile, state.state,
                   state.state.isKnown() ? *state.state : "", what.c_str(), remarks);
    }
}

/** What is shared by everybody, whatever this user's umask is. */
void putShared(const Directory& directory, const std::string& name, const std::string& bytes)
{
    constexpr mode_t forAll = 0666;
    put(directory, name.c_str(), bytes);
    if (::fchmodat(directory.fd(), name.c_str(), forAll, 0) != 0) {
        throw Failure("cannot share '" + directory.nameOf(name).string() + "'", errno);
    }
}

void putSharedMemory(const Directory& board, const capsule::Contents& contents, Remarks& remarks)
{
    const Directory directory = need(board, entry::SharedMemory);
    for (const capsule::SharedFile& file : contents.sharedFiles) {
        if (file.name == sharedname::Semaphore) {
            putShared(directory, file.name,
                      semaphoreBytes(contents.semaphore.isKnown() ? *contents.semaphore : 1));
        } else if (file.name == sharedname::SyncArea) {
            std::string slots;
            for (unsigned int block = 0; block < dtcm::NumberOfBlocks; ++block) {
                slots += bytesOf(sharedMutex());
            }
            putShared(directory, file.name, slots);
            remarks.emplace_back("the mutexes of the blocks, which are made anew and free");
        } else {
            remarks.push_back("the contents of /dev/shm/" + file.name);
        }
    }
    for (const std::string& mutex : contents.heldMutexes) {
        remarks.push_back("that a mutex was held, " + mutex);
    }
}

void fill(const Directory& board, const capsule::Contents& contents, Remarks& remarks)
{
    putIfKnown(board, entry::Eeprom, contents.eeprom,
               contents.eeprom.isKnown() ? *contents.eeprom : "", "EEPROM", remarks);
    putIfKnown(board, entry::Dtcm, contents.warmArea,
               contents.warmArea.isKnown() ? areaForThisMachine(*contents.warmArea, remarks) : "",
               "warm area", remarks);
    std::string registers =
        contents.resetCause.isKnown() ? bytesOf(std::uint32_t(*contents.resetCause)) : "";
    registers.resize(Board::RegistersSize);
    putIfKnown(board, entry::Registers, contents.resetCause, registers, "registers", remarks);
    putIfKnown(board, entry::Settings, contents.settings,
               contents.settings.isKnown() ? *contents.settings : "", "settings", remarks);
    putLeds(board, contents.leds, remarks);
    putSharedMemory(board, contents, remarks);
    const Directory temporaryFiles = need(board, entry::TemporaryFiles);
    remove(temporaryFiles, entry::coldMarker().c_str());
    if (contents.coldMarker) {
        put(temporaryFiles, entry::coldMarker().c_str(), "");
    }
}

} // namespace

std::vector<std::string> createBoardOf(const std::filesystem::path& place,
                                       const capsule::Contents& contents)
{
    Remarks remarks;
    createBoard(place, contents.eeprom.isKnown() ? *contents.eeprom : "",
                [&](const Directory& board) { fill(board, contents, remarks); });
    return remarks;
}
