#include "RowBuilders.h"
#include "WaitingProcess.h"

#include <csignal>

namespace interface
{

namespace
{

const std::string Warm = "Bsp.WarmDatabase 1 ";
const std::string Start =
    Warm + "WarmDatabase(): Error during initialization of warm area: Caught ";
const std::string Slot = "bsp.networking 1 WarmSlot(): ";
const std::string NoArea =
    Warm + "memoryMapTheDatabase(): Error during initialization of warm area";

/** Cases in which the area is full at first, with what they answer on one that is empty. */
const std::vector<Answers> OnEmptyArea{
    {"WarmDatabase_createObject without room", "1 object"},
    {"WarmDatabase_createObject of a present object", "1 object"},
    {"WarmDatabase_retrieveObject of a present object", "0 nothing"},
    {"WarmDatabase_getObjectData without room", "1 object"},
    {"WarmSlot without room", "-1"},
};

const std::vector<std::string> AllWarm{"Bsp_", "WarmDatabase", "WarmSlot", "os::bsp::"};

/** A row for all that opens the store, which begins on an empty area then. */
std::vector<FailureRow> onEmptyArea(const FailureRow& row)
{
    std::vector<FailureRow> rows;
    for (const Answers& functions : OnEmptyArea) {
        rows.push_back(forGood(withAnswer(row, functions.answer)));
        rows.back().cases = {functions.name};
    }
    rows.push_back(row);
    rows.back().cases = AllWarm;
    return rows;
}

/** What takes no semaphore. */
const std::vector<std::string> WithoutLock{
    "WarmDatabase_createObject of a l",
    "WarmDatabase_createObject without a name",
    "WarmDatabase_retrieveObject of a l",
    "WarmDatabase of",
    "WarmDatabase after",
    "WarmDatabase beside",
    "WarmDatabase without",
    "os::bsp::dtcm::WarmDatabase::getInstance",
    "os::bsp::dtcm::WarmDatabase::getNumber",
    "os::bsp::dtcm::WarmDatabase::logNames",
    "os::bsp::dtcm::WarmDatabase::validate",
};

/** A failure after which the semaphore stays at 0: whoever takes it waits for ever. */
std::vector<FailureRow> withoutDecision(const FailureRow& row)
{
    std::vector<FailureRow> rows{row, withEnd(row, testsupport::WaitsForEver)};
    rows[0].cases = WithoutLock;
    rows[1].cases = AllWarm;
    return rows;
}

/** What an exception before there is an area leads to. */
std::vector<FailureRow> withoutArea()
{
    const std::string full = Warm + "createObject(): Error: DTCM is out of space.";
    const std::string noSlot = Slot + "Error: Could not get the SLOT object from the warm database";
    const auto row = [](std::vector<std::string> cases, const char* answer,
                        std::vector<std::string> messages) {
        messages.insert(messages.begin(), Start + "@x");
        return forGood(withAnswer(
            onCall(std::move(cases), "DDevIo_open throws", 1, 1, std::move(messages)), answer));
    };
    std::vector<FailureRow> rows{
        onCall({"WarmDatabase_createObject of a l", "WarmDatabase_createObject without a name",
                "WarmDatabase_retrieveObject of a l", "WarmDatabase_getObjectData of a l"},
               "DDevIo_open throws", 1, 1, {Start + "@x"}),
        row({"WarmDatabase_createObject of a p", "WarmDatabase_createObject without room",
             "WarmDatabase_getObjectData without room",
             "os::bsp::dtcm::WarmDatabase::createObject"},
            "0 nothing", {full}),
        row({"WarmDatabase_retrieveObject of a p", "os::bsp::dtcm::WarmDatabase::retrieveObject"},
            "0 nothing", {}),
        row({"os::bsp::dtcm::WarmDatabase::getObjectData"}, "0 nothing nothing", {full}),
        row({"os::bsp::dtcm::WarmDatabase::getNumber"}, "0", {}),
        row({"WarmSlot", "Bsp_getSlotId", "os::bsp::WarmSlot::get", "os::bsp::slotInstance"}, "-1",
            {full, noSlot}),
        row({"Bsp_setSlotId", "os::bsp::WarmSlot::"}, "done", {full, noSlot}),
        row({"Bsp_createDtcmObject", "WarmDatabase_createObject"}, "-1 nothing", {full}),
        row({"Bsp_retrieveDtcmObject", "WarmDatabase_retrieveObject"}, "-1 nothing", {}),
        row({"Bsp_getDtcmObjectData", "WarmDatabase_getObjectData"}, "-1 nothing nothing", {full}),
        onCall(AllWarm, "DDevIo_open throws", 1, 1, {Start + "@x"}),
    };
    return rows;
}

} // namespace

std::vector<FailureRow> warmRows()
{
    const std::string tooLong = "validateObject(): Error: blockName A_NAME_OF_16_CHA with length "
                                "16 is larger than the allowed maximum of 15";
    const std::string tooLarge =
        "validateObject(): Error: objectSize: 1009 exceeds the maximum size: 1008";
    const std::string full = Warm + "createObject(): Error: DTCM is out of space.";
    const std::string noMutexes =
        Warm + "initBlockSynchronization(): error in shm_open error: Too many open files";
    const std::string noMapping = NoArea + ", error: Resource temporarily unavailable";
    const std::string noRoom =
        "memoryMapTheDatabase(): Assertion `m_mappedMemory != nullptr' failed.";
    const std::string outOfMemory = Start + "exception [std::bad_alloc].";
    const std::string noSemaphore = Warm + "initDatabaseSemaphore(): error in sem_open error: @e";
    const std::vector<std::string> resetType{"Bsp_getResetType", "os::bsp::getResetType"};
    std::vector<FailureRow> rows{
        onCase("WarmDatabase_createObject of a long name", "0 nothing", {Warm + tooLong}),
        onCase("WarmDatabase_createObject of a large object", "0 nothing", {Warm + tooLarge}),
        onCase("WarmDatabase_createObject without a name", "0 nothing", {}),
        onCase("WarmDatabase_createObject without room", "0 nothing", {full}),
        onCase("WarmDatabase_createObject of a present object", "1 object",
               {"Bsp.WarmDatabase 2 createObject(): Warning: object for block aahas been requested "
                "to be created, but it was already present in warm area"}),
        onCase("WarmDatabase_retrieveObject of a long name", "0 nothing", {Warm + tooLong}),
        onCase("WarmDatabase_retrieveObject of a large object", "0 nothing", {Warm + tooLarge}),
        onCase("WarmDatabase_retrieveObject of a present object", "1 object", {}),
        onCase("WarmDatabase_getObjectData of a long name", "0 nothing",
               {Warm + tooLong, Warm + tooLong}),
        onCase("WarmDatabase_getObjectData of a large object", "0 nothing",
               {Warm + tooLarge, Warm + tooLarge}),
        onCase("WarmDatabase_getObjectData without room", "0 nothing", {full}),
        onCase("WarmDatabase without the device", "done", {NoArea}),
        onCase("WarmDatabase without a mapping", "done", {noMapping}),
        onCase("WarmDatabase without mutexes", "done", {noMutexes}),
        onCase("WarmSlot without room", "-1",
               {full, Slot + "Error: Could not get the SLOT object from the warm database"}),
        onCase("WarmSlot with a trace library that throws", "0",
               {Slot + "Error during initialization of warm area: Caught exception [no trace]."}),
        onCase("WarmSlot with a trace library throwing a number", "0",
               {Slot + "Error during initialization of warm area: Caught unknown exception"}),

        withAnswer(onCall(resetType, "createUnique", 1, 1, {}), "3"),
        withAnswer(onCall(resetType, "createUnique of another type", 1, 1, {}), "3"),
        withAnswer(onCall(resetType, "Device::read", 1, 1, {}), "3"),
        withAnswer(onCall(resetType, "createUnique throws", 1, 1, {}), "exception@y"),
        withAnswer(onCall(resetType, "pthread_once", 1, Any, {}), "exception: @e"),
        withAnswer(onCall(resetType, "allocation", 1, 1, {}), "exception: std::bad_alloc"),
        forGood(withAnswer(
            onCall({"Bsp_getResetType of Nxu5", "os::bsp::getResetType"}, "e2prom_data_read", 1, 1,
                   {"bsp.core 1 operator()(): e2prom_data_read() failed. Returned @n"}),
            "0")),
        forGood(
            withAnswer(onCall(resetType, "e2prom_data_read", 1, 1,
                              {"bsp.core 1 operator()(): e2prom_data_read() failed. Returned @n"}),
                       "0")),

        withEnd(onCall({"WarmDatabase without the device"}, "allocation", 1, 1, {NoArea}),
                128 + SIGABRT, noRoom),
        withEnd(onCall({"WarmDatabase without a mapping"}, "allocation", 1, 1, {noMapping}),
                128 + SIGABRT, noRoom),
        withAnswer(
            onCall({"WarmDatabase without the device"}, "allocation", 2, 2, {NoArea, outOfMemory}),
            "done"),
        withAnswer(onCall({"WarmDatabase without a mapping"}, "allocation", 2, 2,
                          {noMapping, outOfMemory}),
                   "done"),
        withAnswer(onCall({"WarmDatabase without mutexes"}, "allocation", 1, 1, {outOfMemory}),
                   "done"),
        withEnd(onCall({"WarmDatabase without mutexes"}, "allocation", 2, 2, {noMutexes}),
                128 + SIGABRT,
                "initBlockSynchronization(): Assertion `m_blockSync != nullptr' failed."),
        // The name does not fit into a string without memory of its own.
        withAnswer(onCall({"WarmDatabase_createObject of a long name",
                           "WarmDatabase_retrieveObject of a long name",
                           "WarmDatabase_getObjectData of a long name"},
                          "allocation", 2, 2, {}),
                   "exception: std::bad_alloc"),
        // The name that it has made already stays: the C library does not take it away.
        onCall({"WarmDatabase beside"}, "allocation in sem_open", 1, Any, {noSemaphore}),
        withLeft(onCall(AllWarm, "allocation in sem_open", 1, Any, {noSemaphore}),
                 {"/dev/shm/sem.DtcmDbSharedSem"}),
        // What cannot be opened is made anew, and so it is this process's to take away.
        withLeft(onCall({"WarmDatabase beside"}, "shm_open", 1, 1, {}),
                 {"/dev/shm/sem.DtcmDbSharedSem"}),
        onCall(AllWarm, "sem_open", 1, Any, {noSemaphore}),
        onCall(AllWarm, "shm_open", 2, 2,
               {Warm + "initBlockSynchronization(): error in shm_open error: @e"}),
        withEnd(onCall(AllWarm, "ftruncate", 1, 1, {}), 128 + SIGBUS),
        onCall({"WarmDatabase beside"}, "mmap", 2, 2, {}),
        withEnd(onCall(AllWarm, "mmap", 2, 2, {}), 128 + SIGSEGV),
        withAnswer(onCall(AllWarm, "pthread_mutex_lock", 1, Any, {}), "exception: @e"),
    };
    append(rows, onEmptyArea(onCall({}, "DDevIo_open", 1, 1, {NoArea})));
    append(rows, onEmptyArea(onCall({}, "mmap", 1, 1, {NoArea + ", error: @e"})));
    // The board of row 14 has cold restarts.
    append(rows, onEmptyArea(onCall({}, "e2prom_data_read", 1, 1,
                                    {"bsp.core 1 operator()(): e2prom_data_read() failed. "
                                     "Returned @n"})));
    append(rows, withoutDecision(onCall({}, "createUnique throws", 1, 1, {Start + "@x"})));
    append(rows, withoutDecision(onCall({}, "pthread_once", 1, Any, {Start + "exception [@e]."})));
    append(rows, withoutDecision(
                     onCall({}, "allocation", 1, 1, {Start + "exception [std::bad_alloc]."})));
    append(rows, withoutArea());
    return rows;
}

} // namespace interface
