#include "findings/Texts.h"

#include "Hardware.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace
{

static_assert(hardware::WarmAreaSize == 32768, "the texts say so");

constexpr const char* RemoveNames = "end the programs that use the store, then: "
                                    "bsp-diag repair --yes DtcmDbSharedSem DtcmSync";
constexpr const char* PrivateStore =
    "every program works on a private, empty store: getSlotId answers -1, and what is set is lost";
constexpr const char* Defaults =
    "queries answer for hardware variant 14, whatever the board is (KT4851_3, platform Nxu5)";
constexpr const char* ColdRestart = "restart the board cold, which clears the area";
constexpr const char* SlotWaits = "getSlotId and setSlotId wait for ever, in every program";

constexpr FindingText texts[] = {
    {"eeprom-unreadable", "the EEPROM cannot be read",
     "e2prom_data_read(5, 1) answered {result} ({place})", Defaults,
     "see that the EEPROM is there, that its driver is loaded, and that this user may read it"},
    {"eeprom-short", "the EEPROM has no whole hardware code", "{place} has {size} of 8 bytes",
     Defaults, "write the eight bytes of the hardware code; bsp-board variants lists those known"},
    {"eeprom-unknown-code", "no hardware variant has the board's code", "the code is {code}",
     "product and revision are those of variant 0; other queries go by the words of the code",
     "correct the EEPROM, or install a version that knows the board"},
    {"eeprom-unknown-word", "words of the hardware code have no meaning",
     "the code is {code}; without meaning: {words}",
     "the queries of these words answer EndOfList or a default",
     "correct the EEPROM, or install a version that knows the board"},

    {"dtcm-missing", "the tightly coupled memory cannot be opened", "{place}: {error}",
     PrivateStore, "see that the device is there and its driver is loaded"},
    {"dtcm-short", "the tightly coupled memory is too short", "{place} has {size} of 32768 bytes",
     PrivateStore, "give the device 32768 bytes"},
    {"dtcm-not-writable", "this user may not write the tightly coupled memory", "{place}: {error}",
     PrivateStore, "give this user the right to read and write it"},
    {"dtcm-not-mappable", "the tightly coupled memory cannot be mapped", "{place}: {error}",
     PrivateStore, "see that the device has a region of 32768 bytes"},
    {"dtcm-not-lockable", "this process may not lock as much memory as the store needs",
     "the limit is {limit}",
     "programs of this user work on a private store, or crash when they use a mutex of a block",
     "raise the limit of locked memory (ulimit -l, LimitMEMLOCK=)"},

    {"registers-missing", "the cause of the last restart cannot be read", "{reason}",
     "the reset type is Unknown: the warm area is never cleared",
     "see that the device is there and this user may read it"},
    {"reset-cause-none", "the register holds no cause of a restart", "the word is {cause}",
     "the reset type is none: the warm area is never cleared",
     "see that the boot loader writes 0 (cold), 1 (warm) or 2 (watchdog)"},
    {"cold-marker-stale", "the mark of a cold restart is there after a restart that was not cold",
     "{marker}, cause of the restart {cause}", "{effect}",
     "see that start-up scripts make the mark after cold restarts only; remove it"},
    {"cold-marker-missing", "the mark of a cold restart is missing after one",
     "no {marker}, cause of the restart {cause}",
     "the restart counts as warm: programs take what power-up left in the warm area for objects",
     "see that start-up scripts make the mark before the first program starts"},

    {"semaphore-held", "the semaphore of the warm area is held",
     "{place}: 0 at every look, {waiters} waiting; mapped by {users}",
     "every operation on the warm area waits, in every program; getSlotId hangs", RemoveNames},
    {"semaphore-link", "in the place of the semaphore of the warm area there is something else",
     "{place} is {kind}", "programs work on the warm area without any lock", "remove {path}"},
    {"semaphore-unused", "no living process uses the semaphore of the warm area", "{place}",
     "the program that made it was killed: nobody decides about the area again, and the next "
     "programs take it as it is, held or not",
     "bsp-diag repair --yes DtcmDbSharedSem DtcmSync"},
    {"semaphore-mode", "not everybody may use the semaphore of the warm area",
     "{place}, mode {mode}", "programs of other users work on the warm area without any lock",
     "start the first program with umask 0; now: end the programs that use the store, then: "
     "bsp-diag repair --yes DtcmDbSharedSem DtcmSync"},
    {"semaphore-former", "living processes use a semaphore that has lost its name",
     "without a name: {former}; of that name: {users}",
     "old and new programs do not exclude each other on the warm area", "restart {former}"},
    {"semaphore-size", "the semaphore of the warm area is not one of this machine",
     "{place}, {size} bytes instead of {expected}",
     "programs of different word sizes use one store, or the file is damaged: they do not exclude "
     "each other, or crash",
     RemoveNames},

    {"mutexes-link", "in the place of the mutexes of the blocks there is something else",
     "{place} is {kind}",
     "programs have mutexes of their own, which exclude nobody, or crash when they use them",
     "remove {path}"},
    {"mutexes-size", "the mutexes of the blocks are not those of this machine",
     "{place}, {size} bytes instead of {expected}{word}",
     "programs end with SIGBUS or do not exclude each other when they lock a block's mutex",
     RemoveNames},
    {"mutexes-unused", "no living process uses the mutexes of the blocks", "{place}",
     "the program that made them was killed: the next ones take them as they are, held or not",
     "bsp-diag repair --yes DtcmDbSharedSem DtcmSync"},
    {"mutexes-mode", "not everybody may use the mutexes of the blocks", "{place}, mode {mode}",
     "programs of other users have mutexes of their own, which exclude nobody",
     "start the first program with umask 0; now: end the programs that use the store, then: "
     "bsp-diag repair --yes DtcmDbSharedSem DtcmSync"},
    {"mutexes-former", "living processes use mutexes that have lost their name",
     "without a name: {former}; of that name: {users}",
     "old and new programs do not exclude each other on the objects", "restart {former}"},
    {"mutex-held", "a living thread holds the mutex of a block",
     "block {block} ({object}), at every look: {holder}", "who locks the object waits for it",
     "see why that thread does not go on; end its process only where the state of the object does "
     "not matter, since the mutex stays held"},
    {"mutex-dead", "the mutex of a block is held by no living thread",
     "block {block} ({object}): {holder}", "who locks the object waits for ever", RemoveNames},

    {"slot-mutex-held", "a living thread holds the mutex of the slot id", "at every look: {holder}",
     SlotWaits,
     "see why that thread does not go on; when its process is ended, the mutex stays held until a "
     "cold restart clears the area"},
    {"slot-mutex-dead", "the mutex of the slot id is held by no living thread", "{holder}",
     SlotWaits, ColdRestart},
    {"slot-mutex-before-restart", "the mutex of the slot id was held when the board restarted",
     "{holder}; the last restart was of type {reset}, and since then nobody has used the store",
     SlotWaits, ColdRestart},

    {"table-name-open", "names in the warm area do not end", "{objects}",
     "no program finds the objects: names have at most 15 characters", ColdRestart},
    {"table-unreachable", "objects in the warm area lie behind a free block",
     "block {free} is free; behind it: {objects}",
     "no program finds these objects; who asks for one makes it anew", ColdRestart},
    {"slot-word-size", "the object with the slot id was made by a program of another word size",
     "block {block}: {found}, programs here are {own}",
     "programs take other bytes for its mutex: they do not exclude each other, or wait for ever",
     ColdRestart},

    {"kernel-image-left", "the temporary image of a kernel query was left behind",
     "{place}, {size} bytes, locked by nobody",
     "it takes memory; the next query of its user, or of root, removes it",
     "bsp-diag repair --yes zImage_tmp"},
    {"kernel-image-held", "the temporary image of a kernel query has been held for long",
     "{place}, unchanged for {age} s, locked by {holder}",
     "other kernel queries wait for ten seconds, and then remove it or fail", "end {holder}"},
    {"kernel-image-foreign", "the temporary image of a kernel query is another user's",
     "{place}, this user is {user}",
     "getKernelRState fails for this user (-1, \"Unknown r-state\") as long as it is there",
     "as root: bsp-diag repair --yes zImage_tmp"},
    {"kernel-image-link", "in the place of the temporary image there is something else",
     "{place} is {kind}", "getKernelRState fails for everybody (-1, \"Unknown r-state\")",
     "remove {path}"},

    {"settings-damaged", "the settings cannot be read", "{reason}",
     "getRadiolinkMode, getTrafClientMode and, on some boards, getTrafFpgaType end with SIGABRT",
     "correct or remove what the reason names"},
    {"settings-former-format", "the settings are in the format of an earlier version", "{reason}",
     "getRadiolinkMode, getTrafClientMode and, on some boards, getTrafFpgaType end with SIGABRT",
     "write its values as key=value lines into the new file and remove it"},
    {"settings-not-writable", "this user may not change the settings", "{reason}",
     "setRadiolinkMode and clearRadiolinkMode change nothing, and do not say so",
     "give this user the right to write the file and its directory"},
    {"settings-no-mode", "a setting has a value that is none", "{key} = {value}",
     "it counts as not set",
     "set it anew: bsp setRadiolinkMode Rl4 or Rl5; FpgaVariant is TwoTdm or OneTdmRleEqpNoMlhc"},

    {"led-missing", "an LED is missing", "no {place}", "setState {led} answers -1",
     "see that the LED's driver is loaded and calls it {led}"},
    {"led-not-writable", "this user may not set an LED", "{place}", "setState {led} answers -1",
     "give this user the right to write it"},
    {"led-no-trigger", "an LED does not know the trigger korvanta", "{place}: {triggers}",
     "setState {led} answers -1: the LED stays dark",
     "load the driver that offers the trigger korvanta"},

    {"remove-ipc", "shared names go when their owner logs out",
     "{place}; RemoveIPC is on ({where})",
     "after a logout of that user old and new programs use different locks",
     "RemoveIPC=no in logind.conf, or run the programs as a user of the system"},
    {"sticky-names", "the system refuses to open a shared name with O_CREAT",
     "{place}; fs.protected_regular is {value}",
     "everybody but its owner, root too, gets EACCES: a program that starts meanwhile has mutexes "
     "of its own",
     "let the first program be of the user who owns /dev/shm, or set fs.protected_regular to 0"},
    {"shm-missing", "there is no directory for shared memory", "{place}",
     "programs have no lock on the warm area and mutexes of their own; getKernelRState fails",
     "mount a tmpfs on {place}"},
    {"shm-full", "there is no room for shared memory", "{place}",
     "the first program that makes the mutexes ends with SIGBUS; getKernelRState fails",
     "remove what fills {place}"},
    {"shm-not-writable", "this user cannot make shared names", "{place}: {error}",
     "programs have no lock on the warm area and mutexes of their own; getKernelRState fails",
     "mount {place} for writing, with mode 1777"},
    {"tmp-missing", "there is no directory for temporary files", "{place}",
     "the mark of a cold restart cannot be made: each restart of a KT4851_4 counts as warm",
     "make {place}, with mode 1777"},
    {"tmp-full", "there is no room for temporary files", "{place}",
     "the mark of a cold restart cannot be made: each restart of a KT4851_4 counts as warm",
     "remove what fills {place}"},
    {"tmp-not-writable", "this user cannot make temporary files", "{place}: {error}",
     "the mark of a cold restart cannot be made: each restart of a KT4851_4 counts as warm",
     "mount {place} for writing, with mode 1777"},
};

const FindingText& textsOf(const Finding& finding)
{
    const auto* const found =
        std::find_if(std::begin(texts), std::end(texts),
                     [&](const FindingText& text) { return finding.name == text.name; });
    if (found == std::end(texts)) {
        throw std::logic_error("no text for finding " + finding.name);
    }
    return *found;
}

/** The text with the finding's values in it. */
std::string filled(const std::string& text, const Finding& finding)
{
    std::string result;
    std::size_t position = 0;
    for (std::size_t begin = text.find('{'); begin != std::string::npos;
         begin = text.find('{', position))
    {
        const std::size_t end = text.find('}', begin);
        const std::string key = text.substr(begin + 1, end - begin - 1);
        result += text.substr(position, begin - position) + finding.values.at(key);
        position = end + 1;
    }
    return result + text.substr(position);
}

} // namespace

std::vector<std::string> findingNames()
{
    std::vector<std::string> names;
    for (const FindingText& text : texts) {
        names.emplace_back(text.name);
    }
    return names;
}

std::string lineOf(const Finding& finding)
{
    const FindingText& text = textsOf(finding);
    return finding.name + ": " + filled(text.what, finding) +
           ". Evidence: " + filled(text.evidence, finding) +
           ". Follows: " + filled(text.consequence, finding) +
           ". Cure: " + filled(text.cure, finding);
}

Json jsonOf(const Finding& finding)
{
    const FindingText& text = textsOf(finding);
    return {{"name", finding.name},
            {"what", filled(text.what, finding)},
            {"evidence", filled(text.evidence, finding)},
            {"consequence", filled(text.consequence, finding)},
            {"cure", filled(text.cure, finding)}};
}
