#include "FailureRows.h"

#include "WaitingProcess.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <map>
#include <utility>

namespace interface
{

namespace
{

using interposed::Fault;

constexpr std::size_t Any = 1000;
const std::string Kernel = "bsp.core 1 Bsp_getKernelRState(): ";
const std::string Archive = "bsp.core 1 Bsp_findArchive(): ";
const std::string Inflate = "bsp.core 1 Bsp_inflateArchive(): ";
const std::string Banner = "bsp.core 1 Bsp_findLinuxVersion(): ";
const std::string Uboot = "bsp.core 1 Bsp_getUbootProductInfo(): ";
const std::string Warm = "Bsp.WarmDatabase 1 ";
const std::string Start =
    Warm + "WarmDatabase(): Error during initialization of warm area: Caught ";
const std::string Slot = "bsp.networking 1 WarmSlot(): ";
const std::string NoTemporary = Kernel + "Could not open tmp file: /dev/shm/zImage_tmp";
const std::string Interrupted = "bsp.core 4 Bsp_readHelper(): read was interrupted. Retrying...";
const std::string NoArea =
    Warm + "memoryMapTheDatabase(): Error during initialization of warm area";
const std::string Device = BSP_TEST_DATA_DIR "/u-boot-R2B.bin";
const std::string Led = "bsp.led 1 ";
const std::string LedPath = "/sys/class/leds/";

/** A row about a call. */
FailureRow onCall(std::vector<std::string> cases, const char* call, std::size_t first,
                  std::size_t last, std::vector<std::string> messages,
                  std::optional<Fault::Kind> kind = std::nullopt)
{
    FailureRow row{};
    row.cases = std::move(cases);
    row.call = call;
    row.first = first;
    row.last = last;
    row.messages = std::move(messages);
    row.kind = kind;
    return row;
}

/** A row about a case whose circumstances are the cause. */
FailureRow onCase(const char* name, const std::string& answer, std::vector<std::string> messages)
{
    FailureRow row = onCall({name}, "", 0, 0, std::move(messages));
    row.answer = answer;
    return row;
}

FailureRow withAnswer(FailureRow row, const std::string& answer)
{
    row.answer = answer;
    return row;
}

FailureRow withValues(FailureRow row, std::vector<int> values)
{
    row.values = std::move(values);
    return row;
}

/** The answer is kept for the life of the process. */
FailureRow forGood(FailureRow row)
{
    row.next = "same";
    return row;
}

FailureRow withErrno(FailureRow row)
{
    row.error = TheFaults;
    return row;
}

FailureRow withLeft(FailureRow row, std::vector<std::string> left)
{
    row.left = std::move(left);
    return row;
}

FailureRow withEnd(FailureRow row, int status, const std::string& err = "")
{
    row.status = status;
    row.err = err;
    row.answer = "";
    row.next = "";
    return row;
}

/** Functions in C and in C++ with what they answer. */
struct Answers
{
    const char* name; /**< Without its prefix. */
    std::string answer;
};

/** Rows for both forms of each function. */
std::vector<FailureRow> forBoth(const std::vector<Answers>& functions, const FailureRow& row)
{
    std::vector<FailureRow> rows;
    for (const Answers& function : functions) {
        const std::string name = function.name;
        rows.push_back(withAnswer(row, function.answer));
        rows.back().cases = {"Bsp_" + name, "os::bsp::" + name};
    }
    return rows;
}

void append(std::vector<FailureRow>& rows, const std::vector<FailureRow>& others)
{
    rows.insert(rows.end(), others.begin(), others.end());
}

std::vector<FailureRow> identityRows()
{
    const std::vector<std::string> modes{"Bsp_setRadiolinkMode", "Bsp_clearRadiolinkMode"};
    const std::vector<std::string> modesInCpp{"os::bsp::setRadiolinkMode",
                                              "os::bsp::clearRadiolinkMode"};
    // The board of row 14.
    const std::vector<Answers> defaults{
        {"getBoardIdText", "Unknown board revision"},
        {"getBoardId", "786433"},
        {"getControlBackplane", "3"},
        {"getDspType", "6"},
        {"getHwRevision", "1"},
        {"getLatestBoardIdText", "Unknown board revision"},
        {"getNumberOfChannels", "1"},
        {"getNumberOfR", "2"},
        {"getNxuHwVariant", "9"},
        {"getPlatformType", "2"},
        {"getProductId", "12"},
        {"getTrafFpgaType", "19"},
        {"getTrafficBackplane", "2"},
    };
    std::vector<FailureRow> rows{
        onCase("Bsp_getProductId of an unknown code", "5",
               {"bsp.core 1 operator()(): Invalid hardware variant"}),
        onCase("Bsp_getProductId of an unknown product", "18",
               {"bsp.core 1 getProductId(): Unknown product ID: 8"}),
        onCase("Bsp_getNumberOfChannels of an unknown product", "1",
               {"bsp.core 1 getProductId(): Unknown product ID: 8",
                "bsp.core 1 getProductId(): Unknown product ID: 8",
                "bsp.core 1 getNumberOfChannels(): Unknown product id: 18"}),
        onCase("Bsp_getTrafFpgaType of an unknown word", "23",
               {"bsp.core 1 getTrafFpgaType(): Not supported traffic FPGA: 9"}),
        onCase("Bsp_getDspType of an unknown word", "7",
               {"bsp.core 1 getDspType(): Unknown dspType: 9"}),
        onCase("Bsp_getPlatformType of an unknown word", "3",
               {"bsp.core 1 getPlatformType(): Unknown platformType: 9"}),
        onCase("Bsp_getTrafficBackplane of an unknown word", "3",
               {"bsp.core 1 getTrafficBackplane(): Unknown backplaneType: 9"}),
        onCase("Bsp_getControlBackplane of an unknown word", "4",
               {"bsp.core 1 getControlBackplane(): Unknown backplaneType: 9"}),
        onCase("Bsp_getNumberOfRlt of an unknown word", "2",
               {"bsp.core 1 getNumberOfRadiolinks(): Unknown traf type: 9"}),
        onCase("Bsp_setRadiolinkMode of no mode", "-1",
               {"bsp.core 1 setRadiolinkMode(): Unsupported radio-link mode: EndOfList"}),
        onCase("Bsp_getFpgaPath of no name", "null", {}),
        withAnswer(onCall(modes, "NxuConfig refuses", 1, 1, {}), "-1"),
        withAnswer(onCall(modesInCpp, "NxuConfig refuses", 1, 1, {}), "0"),
        withAnswer(onCall({"Bsp_", "os::bsp::"}, "NxuConfig throws", 1, 1, {}),
                   "exception: no bus"),
    };
    append(rows,
           forBoth(defaults, forGood(onCall({}, "e2prom_data_read", 1, 1,
                                            {"bsp.core 1 operator()(): e2prom_data_read() failed. "
                                             "Returned @n"}))));
    rows.push_back(
        withAnswer(onCall({"Bsp_getNumberOfChannels of an unknown product"}, "pthread_once", 3, Any,
                          {"bsp.core 1 getProductId(): Unknown product ID: 8"}),
                   "exception: @e"));
    for (const char* module : {"Bsp_get", "os::bsp::get"}) {
        rows.push_back(withAnswer(onCall({module}, "pthread_once", 1, Any, {}), "exception: @e"));
    }
    return rows;
}

std::vector<FailureRow> rstateRows()
{
    const std::string refused = "bsp.rstate 1 updateVersion(): ";
    const std::string version = "bsp.rstate 4 RState(): R-state: ";
    const std::string invalid = "bsp.rstate 1 increment(17): Invalid parameter";
    return {
        onCase("RState of r1A", "r1A",
               {refused + "First letter not R", version + "r1A, version: 0.0.0", invalid}),
        onCase("RState of RA1", "RA1",
               {refused + "No digit after R", version + "RA1, version: 0.0.0", invalid}),
        onCase("RState of R0A", "R0A",
               {refused + "R-state number not larger than 0", version + "R0A, version: 0.0.0",
                invalid}),
        onCase("RState of R1 alone", "R1",
               {refused + "No R-state letter(s) after number", version + "R1, version: 1.0.0",
                invalid}),
        onCase("RState of R1A1000", "R1A1000",
               {refused + "Illegal verification state: 1000",
                version + "R1A1000, version: 1.0.1000", invalid}),
        onCase("RState::RState(int, int, int)", "R1ZZZZ999",
               {"bsp.rstate 3 RState(): R-state: R1ZZZZ999, version: 1.107859.999"}),
    };
}

std::vector<FailureRow> ledRows()
{
    const std::string set = "Led_setState";
    const std::string without = "Led_setState without the attribute";
    const std::string state = "/sys/class/leds/red/korvanta_state";
    const std::string trigger = "/sys/class/leds/red/trigger";
    const std::string failed = Led + "Led_open: Failed to enable Korvanta LED trigger.";
    const std::string closing = Led + "Led_close(@f): close failed. errno = @e.";
    const std::string partial = "bsp.led 3 Led_write(): Partial write: 1 bytes written. ";
    const std::string tooLong = "): Name too long. Please increase ";
    const auto fails = [](FailureRow row) { return withAnswer(std::move(row), "-1"); };
    const auto noLonger = [&](FailureRow row) {
        row.error = EINVAL;
        return fails(std::move(row));
    };
    return {
        onCase(without.c_str(), "-1",
               {Led + "Led_open: open failed. errno = No such file or directory. ledFilename = " +
                state + "."}),
        withEnd(onCase("Led_setState of no LED", "", {}), 128 + SIGABRT,
                "`led < NoOfLeds' failed."),
        withEnd(onCase("Led_setState of no state", "", {}), 128 + SIGABRT,
                "`state < NoOfLedStates' failed."),
        withEnd(onCase("Led_objectToName of no LED", "", {}), 128 + SIGABRT,
                "`led < NoOfLeds' failed."),
        withEnd(onCase("Led_stateObjectToStateName of no state", "", {}), 128 + SIGABRT,
                "`state < NoOfLedStates' failed."),
        withEnd(onCase("Led_nameToObject of no text", "", {}), 128 + SIGABRT,
                "`name != 0' failed."),
        withEnd(onCase("Led_stateNameToStateObject of no text", "", {}), 128 + SIGABRT,
                "`name != 0' failed."),

        withErrno(fails(onCall({without}, "open", 2, 2,
                               {Led +
                                    "Led_enableTrigger: open failed. errno = @e. "
                                    "triggerFilename = " +
                                    trigger + ".",
                                failed}))),
        withErrno(fails(
            onCall({without}, "open", 3, 3,
                   {Led + "Led_open: open failed. errno = @e. ledFilename = " + state + "."}))),
        onCall({without}, "write", 1, 1, {partial + "7 left to write"}, Fault::IsShort),
        withErrno(withValues(fails(onCall({without}, "write", 1, 1, {failed}, Fault::Fails)),
                             {EIO, ENOSPC, EAGAIN, ENODEV})),
        withErrno(fails(onCall({without}, "close", 1, 1, {closing, failed}))),
        noLonger(onCall({without}, "snprintf", 1, 1,
                        {Led + "Led_open(" + state + tooLong + "ledFilename array size."})),
        noLonger(
            onCall({without}, "snprintf", 2, 2,
                   {Led + "Led_enableTrigger(" + trigger + tooLong + "triggerFilename array size.",
                    failed})),

        onCall({set}, "write", 1, 1, {partial + "3 left to write"}, Fault::IsShort),
        withErrno(withValues(fails(onCall({set}, "write", 1, 1, {}, Fault::Fails)),
                             {EIO, ENOSPC, EAGAIN, ENODEV})),
        withErrno(fails(onCall({set}, "close", 1, 1, {closing}))),
        noLonger(onCall({set}, "snprintf", 1, 1,
                        {Led + "Led_open(/sys/class/leds/yellow/korvanta_state" + tooLong +
                         "ledFilename array size."})),
    };
}

std::vector<FailureRow> firmwareRows()
{
    const std::vector<std::string> kernel{"Bsp_getKernelRState"};
    const std::vector<std::string> uboot{"Bsp_getUbootProductInfo"};
    const std::vector<int> errors{EIO, EAGAIN, EISDIR};
    const auto fails = [](FailureRow row) { return withAnswer(std::move(row), "-1"); };
    return {
        onCase("Bsp_getKernelRState with little room", "-1 kept",
               {Kernel + "Invalid buffer size: 7"}),
        onCase("Bsp_getKernelRState without a name", "-1 kept", {Kernel + "Undefined filename"}),
        onCase("Bsp_getKernelRState without a header", "-1",
               {Archive + "Couldn't find ZLIB header"}),
        onCase("Bsp_getKernelRState without a banner", "-1", {Banner + "No Linux version found"}),
        onCase("Bsp_getKernelRState of damaged data", "-1",
               {Inflate + "inflate() failed with error -3"}),

        fails(onCall(kernel, "open", 1, 1, {Kernel + "Could not open file: /tmp/zImage"})),
        fails(onCall(kernel, "lseek", 1, 1,
                     {Kernel + "lseek(zImage, 0, SEEK_SET) failed for /tmp/zImage"})),
        fails(onCall(kernel, "allocation", 1, 1,
                     {Archive + "File error before archive found. read() returned -1"})),
        withValues(fails(onCall(kernel, "read", 1, 2,
                                {Archive + "File error before archive found. read() returned -1"},
                                Fault::Fails)),
                   errors),
        fails(onCall(kernel, "read", 1, 1,
                     {Archive + "File error before archive found. read() returned 0"},
                     Fault::Gives)),
        withValues(onCall(kernel, "read", 1, Any, {Interrupted}, Fault::Fails), {EINTR}),
        fails(onCall(kernel, "lseek", 2, 2,
                     {Kernel + "lseek(zImage, 1000, SEEK_SET) failed for /tmp/zImage"})),
        fails(onCall(kernel, "open", 2, 2, {NoTemporary})),
        withValues(fails(onCall(kernel, "flock", 1, 1, {NoTemporary})), {ENOLCK}),
        fails(onCall(kernel, "fstat", 1, 1, {NoTemporary})),
        fails(onCall(kernel, "fdopen", 1, 1, {NoTemporary})),
        fails(onCall(kernel, "allocation in fdopen", 1, Any, {NoTemporary})),
        fails(onCall(kernel, "inflateInit2_", 1, 1, {})),
        fails(onCall(kernel, "allocation in inflateInit2_", 1, Any, {})),
        fails(onCall(kernel, "allocation in inflate", 1, Any,
                     {Inflate + "inflate() failed with error -4"})),
        withValues(fails(onCall(kernel, "read", 3, Any, {Inflate + "Read failed with errno = @e"},
                                Fault::Fails)),
                   errors),
        fails(onCall(kernel, "read", 3, 3, {"bsp.core 4 Bsp_inflateArchive(): End-of-file reached"},
                     Fault::Gives)),
        fails(onCall(kernel, "inflate", 1, Any, {Inflate + "inflate() failed with error @n"})),
        fails(onCall(kernel, "fwrite", 1, Any, {Inflate + "fwrite() failed"})),
        fails(onCall(kernel, "ferror", 1, Any, {Inflate + "fwrite() failed"})),
        onCall(kernel, "fseek", 1, 1, {Banner + "fseek failed with errno = @e"}),
        // It is the one before the file is taken away.
        onCall({"Bsp_getKernelRState of damaged data"}, "fstat", 2, 2, {}),
        fails(onCall(kernel, "fstat", 2, 2,
                     {Banner + "fstat failed with errno = @e", Banner + "unable to mmap temp image",
                      Banner + "No Linux version found"})),
        fails(onCall(kernel, "mmap", 1, 1,
                     {Banner + "unable to mmap temp image", Banner + "No Linux version found"})),

        fails(
            onCall(uboot, "open", 1, 1,
                   {Uboot + "Failed to open u-boot device with name " + Device + ". errno = @e"})),
        fails(onCall(uboot, "lseek", 1, 1,
                     {Uboot + "Failed to get size of " + Device + ". errno = @e"})),
        fails(onCall(uboot, "lseek", 2, 2, {Uboot + "Failed to set file offset. errno = @e"})),
        fails(onCall(uboot, "allocation", 1, 1, {Uboot + "Failed to allocate 789973 bytes"})),
        withValues(fails(onCall(uboot, "read", 1, Any, {Uboot + "Failed to read file. errno = @e"},
                                Fault::Fails)),
                   errors),
        withValues(onCall(uboot, "read", 1, Any, {Interrupted}, Fault::Fails), {EINTR}),
        withAnswer(onCall(uboot, "read", 1, 1, {}, Fault::Gives), "0 Not found Not found"),
    };
}

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

} // namespace

const std::vector<FailureRow>& failureRows(const std::string& module)
{
    static const std::map<std::string, std::vector<FailureRow>> tables{
        {"identity", identityRows()}, {"firmware", firmwareRows()}, {"rstate", rstateRows()},
        {"led", ledRows()},           {"warm", warmRows()},
    };
    return tables.at(module);
}

std::string nameOf(const FailureRow& row)
{
    std::string name = row.cases.front() + (row.cases.size() > 1 ? ", ..." : "");
    name += row.call.empty() ? "" : ": " + row.call;
    for (const std::string& message : row.messages) {
        name += "\n        " + message;
    }
    return name;
}

bool isOf(const FailureRow& row, const std::string& caseName)
{
    return std::any_of(row.cases.begin(), row.cases.end(), [&](const std::string& beginning) {
        return caseName.rfind(beginning, 0) == 0;
    });
}

const FailureRow* rowOf(const std::vector<FailureRow>& rows, const std::string& caseName,
                        const interposed::Record& record, const Fault& fault)
{
    const std::string call = interposed::nameOf(record, fault.call);
    std::size_t nth = 0;
    for (std::size_t i = 0; i <= fault.call; ++i) {
        nth += interposed::nameOf(record, i) == call ? 1 : 0;
    }
    for (const FailureRow& row : rows) {
        const bool isValue = row.values.empty() || std::find(row.values.begin(), row.values.end(),
                                                             fault.value) != row.values.end();
        if (isOf(row, caseName) && row.call == call && row.first <= nth && nth <= row.last &&
            (!row.kind || *row.kind == fault.kind) && isValue)
        {
            return &row;
        }
    }
    return nullptr;
}

std::string filledIn(std::string text, int value)
{
    const std::pair<const char*, std::string> marks[] = {
        {"@e", std::strerror(value)},
        {"@n", std::to_string(value)},
        {"@x", value == 0 ? "exception [no bus]." : "unknown exception"},
        {"@y", value == 0 ? ": no bus" : ""},
    };
    for (const auto& [mark, meaning] : marks) {
        const std::size_t place = text.find(mark);
        if (place != std::string::npos) {
            text.replace(place, 2, meaning);
        }
    }
    return text;
}

} // namespace interface
