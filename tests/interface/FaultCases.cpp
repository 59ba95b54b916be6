#include "FaultCases.h"

#include "Bsp.h"
#include "FakeBoard.h"
#include "FakeDevices.h"
#include "Files.h"
#include "FirmwareImages.h"
#include "Led.h"
#include "RState.h"
#include "RecordingTrace.h"
#include "WarmDatabase.h"
#include "WarmSlot.h"

#include <cerrno>
#include <filesystem>
#include <mutex>
#include <stdexcept>

#include <fcntl.h>
#include <semaphore.h>
#include <sys/mman.h>
#include <unistd.h>

namespace interface
{

namespace
{

using os::bsp::dtcm::WarmDatabase;

constexpr const char* LongName = "A_NAME_OF_16_CHA";

/** Sets words of the hardware code, with or without a variant that has them. */
void useCode(const os::bsp::NxuHwCode& code, bool isKnown = true)
{
    fakeboard::setCode(code);
    if (isKnown) {
        fakeboard::variant(1).code = code;
    }
}

void useUnknownWords()
{
    useCode({{9, 9, 9, 9, 9, 9, 9, 9}});
    fakeboard::variant(1).productCode = 8;
}

/** KT4851_4, whose restart is warm without a marker. */
void useNxu5()
{
    useCode({{1, 1, 2, 8, 0, 4, 0, 0}});
    fakeboard::variant(1).productCode = 11;
}

/** The names of the store as another process has made them. */
void makeNames()
{
    ::sem_close(::sem_open("/DtcmDbSharedSem", O_CREAT | O_EXCL, 0666, 1));
    const int fd = ::shm_open("/DtcmSync", O_RDWR | O_CREAT, 0666);
    [[maybe_unused]] const int result =
        ::ftruncate(fd, static_cast<off_t>(32 * sizeof(pthread_mutex_t)));
    ::close(fd);
}

void fillArea()
{
    std::string area(32768, '\0');
    for (std::size_t block = 0; block < 32; ++block) {
        area[block * 1024] = static_cast<char>('a' + block % 26);
        area[block * 1024 + 1] = static_cast<char>('a' + block / 26);
    }
    testsupport::writeFile(fakedevices::dtcm().path, area);
}

void takeDeviceAway()
{
    fakedevices::dtcm().kind = fakedevices::Dtcm::Missing;
    fakedevices::dtcm().onOpen = {};
}

/** Fails at the first message about the object that was obtained. */
template <int Value> void throwInSlot(const recordingtrace::Message& message)
{
    static bool isDone = false;
    if (!isDone && message.channel == "bsp.networking" && message.level == 5) {
        isDone = true;
        if (Value != 0) {
            throw Value;
        }
        throw std::runtime_error("no trace");
    }
    keepMessage(message);
}

void open(Answer& answer)
{
    WarmDatabase::getInstance();
    answer << "done";
}

void slotId(Answer& answer)
{
    answer << Bsp_getSlotId();
}

void setSlotId(Answer& answer)
{
    Bsp_setSlotId(5);
    answer << Bsp_getSlotId();
}

void getKernelRState(Answer& answer)
{
    char rstate[8] = "";
    answer << Bsp_getKernelRState(KernelImage, rstate, sizeof rstate) << rstate;
}

void setRedLed(Answer& answer)
{
    answer << Led_setState(Led_Red, Led_Fast);
}

void increment(const char* text, Answer& answer)
{
    RState rstate(text);
    rstate.increment(static_cast<IncrementType>(17));
    answer << rstate.getText().c_str();
}

template <typename Use> void useObject(Answer& answer, Use use)
{
    void* object = &answer;
    const bool result = use(WarmDatabase::getInstance(), &object);
    answer << result << (object == nullptr ? "nothing" : "object");
}

bool getObjectData(const char* name, unsigned int size, void** object)
{
    void* sync = nullptr;
    bool created = false;
    return WarmDatabase_getObjectData(name, object, size, &sync, &created) == 0;
}

std::vector<Case> allCases()
{
    std::vector<Case> cases;
    for (const Operation& operation : operations()) {
        cases.push_back({operation.name, operation.perform});
    }
    const std::vector<Case> others{
        {"Bsp_getProductId of an unknown code",
         [](Answer& answer) { answer << Bsp_getProductId(); },
         [] {
             useCode({{1, 2, 3, 4, 5, 6, 7, 8}}, false);
         }},
        {"Bsp_getProductId of an unknown product",
         [](Answer& answer) { answer << Bsp_getProductId(); }, useUnknownWords},
        {"Bsp_getNumberOfChannels of an unknown product",
         [](Answer& answer) { answer << Bsp_getNumberOfChannels(); }, useUnknownWords},
        {"Bsp_getTrafFpgaType of an unknown word",
         [](Answer& answer) { answer << Bsp_getTrafFpgaType(); }, useUnknownWords},
        {"Bsp_getDspType of an unknown word", [](Answer& answer) { answer << Bsp_getDspType(); },
         useUnknownWords},
        {"Bsp_getPlatformType of an unknown word",
         [](Answer& answer) { answer << Bsp_getPlatformType(); }, useUnknownWords},
        {"Bsp_getTrafficBackplane of an unknown word",
         [](Answer& answer) { answer << Bsp_getTrafficBackplane(); }, useUnknownWords},
        {"Bsp_getControlBackplane of an unknown word",
         [](Answer& answer) { answer << Bsp_getControlBackplane(); }, useUnknownWords},
        {"Bsp_getNumberOfRlt of an unknown word",
         [](Answer& answer) { answer << Bsp_getNumberOfRlt(); }, useUnknownWords},
        {"Bsp_setRadiolinkMode of no mode",
         [](Answer& answer) { answer << Bsp_setRadiolinkMode(2); }},
        {"Bsp_getFpgaPath of no name",
         [](Answer& answer) { answer << Bsp_getFpgaPath("Osprey2"); }},
        {"Bsp_getResetType of Nxu5", [](Answer& answer) { answer << Bsp_getResetType(); }, useNxu5},

        {"Bsp_getKernelRState with little room",
         [](Answer& answer) {
             char rstate[8] = "kept";
             answer << Bsp_getKernelRState(KernelImage, rstate, 7) << rstate;
         }},
        {"Bsp_getKernelRState without a name",
         [](Answer& answer) {
             char rstate[8] = "kept";
             answer << Bsp_getKernelRState(nullptr, rstate, sizeof rstate) << rstate;
         }},
        {"Bsp_getKernelRState without a header", getKernelRState,
         [] { testsupport::writeFile(KernelImage, firmware::noise(2000)); }},
        {"Bsp_getKernelRState without a banner", getKernelRState,
         [] { testsupport::writeFile(KernelImage, firmware::kernelImage(firmware::noise(2000))); }},
        {"Bsp_getKernelRState of damaged data", getKernelRState,
         [] {
             std::string image = firmware::kernelImage(firmware::noise(2000));
             image[image.size() / 2] = static_cast<char>(image[image.size() / 2] ^ 0x10);
             testsupport::writeFile(KernelImage, image);
         }},

        {"Led_setState without the attribute", setRedLed,
         [] { std::filesystem::remove("/sys/class/leds/red/korvanta_state"); }},
        {"Led_setState of no LED", [](Answer& answer) { answer << Led_setState(3, 0); }},
        {"Led_setState of no state", [](Answer& answer) { answer << Led_setState(0, 7); }},
        {"Led_objectToName of no LED", [](Answer& answer) { answer << Led_objectToName(3); }},
        {"Led_stateObjectToStateName of no state",
         [](Answer& answer) { answer << Led_stateObjectToStateName(7); }},
        {"Led_nameToObject of no text",
         [](Answer& answer) { answer << Led_nameToObject(nullptr); }},
        {"Led_stateNameToStateObject of no text",
         [](Answer& answer) { answer << Led_stateNameToStateObject(nullptr); }},

        {"RState of r1A", [](Answer& answer) { increment("r1A", answer); }},
        {"RState of RA1", [](Answer& answer) { increment("RA1", answer); }},
        {"RState of R0A", [](Answer& answer) { increment("R0A", answer); }},
        {"RState of R1 alone", [](Answer& answer) { increment("R1", answer); }},
        {"RState of R1A1000", [](Answer& answer) { increment("R1A1000", answer); }},

        {"WarmDatabase beside another process", open, makeNames},
        {"WarmDatabase of Nxu5", open, useNxu5},
        {"WarmDatabase after a cold restart", open, [] { fakedevices::control().word = 0; }},
        {"WarmDatabase without the device", open, takeDeviceAway, {}, false, "allocation"},
        {"WarmDatabase without a mapping",
         open,
         nullptr,
         {{"mmap", EAGAIN, 1}},
         false,
         "allocation"},
        {"WarmDatabase without mutexes",
         open,
         nullptr,
         {{"shm_open", EMFILE, 2}},
         false,
         "allocation"},
        {"WarmDatabase at the end of its process", open, nullptr, {}, true},
        {"WarmDatabase at the end beside another process", open, makeNames, {}, true},
        {"WarmDatabase_createObject of a long name",
         [](Answer& answer) {
             useObject(answer, [](WarmDatabase& /*database*/, void** object) {
                 return WarmDatabase_createObject(LongName, object, 8) == 0;
             });
         }},
        {"WarmDatabase_createObject of a large object",
         [](Answer& answer) {
             useObject(answer, [](WarmDatabase& /*database*/, void** object) {
                 return WarmDatabase_createObject("LARGE", object, 1009) == 0;
             });
         }},
        {"WarmDatabase_createObject without a name",
         [](Answer& answer) {
             useObject(answer, [](WarmDatabase& /*database*/, void** object) {
                 return WarmDatabase_createObject(nullptr, object, 8) == 0;
             });
         }},
        {"WarmDatabase_createObject without room",
         [](Answer& answer) {
             useObject(answer, [](WarmDatabase& /*database*/, void** object) {
                 return WarmDatabase_createObject("ONE_MORE", object, 8) == 0;
             });
         },
         fillArea},
        {"WarmDatabase_createObject of a present object",
         [](Answer& answer) {
             useObject(answer, [](WarmDatabase& /*database*/, void** object) {
                 return WarmDatabase_createObject("aa", object, 8) == 0;
             });
         },
         fillArea},
        {"WarmDatabase_retrieveObject of a long name",
         [](Answer& answer) {
             useObject(answer, [](WarmDatabase& /*database*/, void** object) {
                 return WarmDatabase_retrieveObject(LongName, object, 8) == 0;
             });
         }},
        {"WarmDatabase_retrieveObject of a large object",
         [](Answer& answer) {
             useObject(answer, [](WarmDatabase& /*database*/, void** object) {
                 return WarmDatabase_retrieveObject("LARGE", object, 1009) == 0;
             });
         }},
        {"WarmDatabase_retrieveObject of a present object",
         [](Answer& answer) {
             useObject(answer, [](WarmDatabase& /*database*/, void** object) {
                 return WarmDatabase_retrieveObject("aa", object, 8) == 0;
             });
         },
         fillArea},
        {"WarmDatabase_getObjectData of a long name",
         [](Answer& answer) {
             useObject(answer, [](WarmDatabase& /*database*/, void** object) {
                 return getObjectData(LongName, 8, object);
             });
         }},
        {"WarmDatabase_getObjectData of a large object",
         [](Answer& answer) {
             useObject(answer, [](WarmDatabase& /*database*/, void** object) {
                 return getObjectData("LARGE", 1009, object);
             });
         }},
        {"WarmDatabase_getObjectData without room",
         [](Answer& answer) {
             useObject(answer, [](WarmDatabase& /*database*/, void** object) {
                 return getObjectData("ONE_MORE", 8, object);
             });
         },
         fillArea},
        {"WarmSlot without room", slotId, fillArea},
        {"WarmSlot with a trace library that throws",
         slotId,
         [] { recordingtrace::setObserver(throwInSlot<0>); },
         {},
         false,
         "munmap"},
        {"WarmSlot with a trace library throwing a number",
         slotId,
         [] { recordingtrace::setObserver(throwInSlot<1>); },
         {},
         false,
         "munmap"},
        {"WarmSlot, set and asked for", setSlotId},
    };
    cases.insert(cases.end(), others.begin(), others.end());
    return cases;
}

} // namespace

const std::vector<Case>& faultCases()
{
    static const std::vector<Case> cases = allCases();
    return cases;
}

std::string moduleOf(const Case& what)
{
    const auto has = [&](const char* text) { return what.name.find(text) != std::string::npos; };
    if (has("Led_")) {
        return "led";
    }
    if (has("Warm") || has("Slot") || has("slot") || has("Dtcm") || has("ResetType")) {
        return "warm";
    }
    if (has("KernelRState") || has("Uboot")) {
        return "firmware";
    }
    return has("RState") ? "rstate" : "identity";
}

} // namespace interface
