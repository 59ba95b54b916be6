#include "Operations.h"

#include "Bsp.h"
#include "Led.h"
#include "PlatformScope.h"
#include "RState.h"
#include "WarmDatabase.h"
#include "WarmSlot.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <sstream>

#include <semaphore.h>

namespace interface
{

namespace
{

using os::bsp::WarmSlot;
using os::bsp::dtcm::WarmDatabase;

WarmDatabase& database()
{
    return WarmDatabase::getInstance();
}

constexpr const char* Object = "OBJECT";
constexpr unsigned int ObjectSize = 64;

void kernelRState(Answer& answer)
{
    std::array<char, 8> rstate{};
    answer << Bsp_getKernelRState(KernelImage, rstate.data(), rstate.size()) << rstate.data();
}

void ubootProductInfo(Answer& answer)
{
    std::array<char, 32> product{};
    std::array<char, 12> rstate{};
    answer << Bsp_getUbootProductInfo(BootLoaderImage, product.data(), product.size(),
                                      rstate.data(), rstate.size())
           << product.data() << rstate.data();
}

const char* isThere(const void* object)
{
    return object == nullptr ? "nothing" : "object";
}

using CreateOrRetrieve = int (*)(const char*, void**, unsigned int);
using GetObjectData = int (*)(const char*, void**, unsigned int, void**, bool*);

void use(CreateOrRetrieve function, Answer& answer)
{
    void* object = nullptr;
    const int result = function(Object, &object, ObjectSize);
    answer << result << isThere(object);
}

void use(GetObjectData function, Answer& answer)
{
    void* object = nullptr;
    void* sync = nullptr;
    bool created = false;
    const int result = function(Object, &object, ObjectSize, &sync, &created);
    answer << result << isThere(object) << isThere(sync);
}

void getObjectData(Answer& answer)
{
    void* object = nullptr;
    std::mutex* sync = nullptr;
    bool created = false;
    const bool result = database().getObjectData(Object, &object, ObjectSize, &sync, created);
    answer << result << isThere(object) << isThere(sync);
}

void createObject(Answer& answer)
{
    void* object = nullptr;
    const bool result = database().createObject(Object, &object, ObjectSize, true);
    answer << result << isThere(object);
}

void retrieveObject(Answer& answer)
{
    void* object = nullptr;
    const bool result = database().retrieveObject(Object, &object, ObjectSize, true);
    answer << result << isThere(object);
}

void incremented(void (*step)(RState&), Answer& answer)
{
    RState rstate("R1ZZ999");
    step(rstate);
    answer << rstate.getText().c_str();
}

void guarded(Answer& answer)
{
    sem_t semaphore;
    ::sem_init(&semaphore, 0, 1);
    int inside = -1;
    int outside = -1;
    {
        const WarmDatabase::SemLockGuard guard(&semaphore);
        ::sem_getvalue(&semaphore, &inside);
    }
    ::sem_getvalue(&semaphore, &outside);
    ::sem_destroy(&semaphore);
    answer << inside << outside;
}

void lockedAndUnlocked(Answer& answer)
{
    database().lock();
    database().unlock();
    answer << "done";
}

void toVersion(Answer& answer)
{
    int major = -1;
    int minor = -1;
    int verification = -1;
    const int result = RState_toVersion("R9AC05", &major, &minor, &verification);
    answer << result << major << minor << verification;
}

void fromVersion(Answer& answer)
{
    char rstate[RState::MaxRStateLen] = "";
    answer << RState_fromVersion(rstate, 7, 5, 1) << rstate;
}

template <typename Type>
void increment(int (*function)(char*, unsigned int, Type), Type type, Answer& answer)
{
    char rstate[RState::MaxRStateLen] = "R1A01";
    answer << function(rstate, sizeof rstate, type) << rstate;
}

#define STRING "std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >"

} // namespace

Answer& Answer::operator<<(const char* text)
{
    const testsupport::PlatformScope scope;
    const std::size_t length = std::strlen(m_text.data());
    const char* const word = text == nullptr ? "null" : text;
    const bool isApart = length != 0 && *word != '\0';
    std::snprintf(m_text.data() + length, m_text.size() - length, "%s%s", isApart ? " " : "", word);
    return *this;
}

Answer& Answer::operator<<(long number)
{
    const testsupport::PlatformScope scope;
    std::array<char, 24> digits{};
    std::snprintf(digits.data(), digits.size(), "%ld", number);
    return *this << digits.data();
}

const std::vector<Operation>& operations()
{
    static const std::vector<Operation> table{
        {"Bsp_clearRadiolinkMode", [](Answer& answer) { answer << Bsp_clearRadiolinkMode(); }},
        {"Bsp_controlBackplaneName", [](Answer& answer) { answer << Bsp_controlBackplaneName(1); }},
        {"Bsp_createDtcmObject", [](Answer& answer) { use(Bsp_createDtcmObject, answer); }},
        {"Bsp_dspTypeName", [](Answer& answer) { answer << Bsp_dspTypeName(1); }},
        {"Bsp_getBoardId", [](Answer& answer) { answer << Bsp_getBoardId(); }},
        {"Bsp_getBoardIdText", [](Answer& answer) { answer << Bsp_getBoardIdText(); }},
        {"Bsp_getControlBackplane", [](Answer& answer) { answer << Bsp_getControlBackplane(); }},
        {"Bsp_getDspType", [](Answer& answer) { answer << Bsp_getDspType(); }},
        {"Bsp_getDtcmObjectData", [](Answer& answer) { use(Bsp_getDtcmObjectData, answer); }},
        {"Bsp_getFpgaPath", [](Answer& answer) { answer << Bsp_getFpgaPath("pci"); }},
        {"Bsp_getHwRevision", [](Answer& answer) { answer << Bsp_getHwRevision(); }},
        {"Bsp_getKernelRState", kernelRState},
        {"Bsp_getLatestBoardIdText", [](Answer& answer) { answer << Bsp_getLatestBoardIdText(); }},
        {"Bsp_getNumberOfChannels", [](Answer& answer) { answer << Bsp_getNumberOfChannels(); }},
        {"Bsp_getNumberOfRlt", [](Answer& answer) { answer << Bsp_getNumberOfRlt(); }},
        {"Bsp_getNxuHwVariant",
         [](Answer& answer) { answer << Bsp_getNxuHwVariant()->productCode; }},
        {"Bsp_getPlatformType", [](Answer& answer) { answer << Bsp_getPlatformType(); }},
        {"Bsp_getProductId", [](Answer& answer) { answer << Bsp_getProductId(); }},
        {"Bsp_getRadiolinkMode", [](Answer& answer) { answer << Bsp_getRadiolinkMode(); }},
        {"Bsp_getResetType", [](Answer& answer) { answer << Bsp_getResetType(); }},
        {"Bsp_getSlotId", [](Answer& answer) { answer << Bsp_getSlotId(); }},
        {"Bsp_getSwitchType", [](Answer& answer) { answer << Bsp_getSwitchType(); }},
        {"Bsp_getTrafFpgaType", [](Answer& answer) { answer << Bsp_getTrafFpgaType(); }},
        {"Bsp_getTrafficBackplane", [](Answer& answer) { answer << Bsp_getTrafficBackplane(); }},
        {"Bsp_getUbootProductInfo", ubootProductInfo},
        {"Bsp_hwRevisionName", [](Answer& answer) { answer << Bsp_hwRevisionName(1); }},
        {"Bsp_platformTypeName", [](Answer& answer) { answer << Bsp_platformTypeName(1); }},
        {"Bsp_productIdName", [](Answer& answer) { answer << Bsp_productIdName(5); }},
        {"Bsp_radiolinkModeName", [](Answer& answer) { answer << Bsp_radiolinkModeName(1); }},
        {"Bsp_resetTypeName", [](Answer& answer) { answer << Bsp_resetTypeName(1); }},
        {"Bsp_retrieveDtcmObject", [](Answer& answer) { use(Bsp_retrieveDtcmObject, answer); }},
        {"Bsp_setRadiolinkMode", [](Answer& answer) { answer << Bsp_setRadiolinkMode(1); }},
        {"Bsp_setSlotId",
         [](Answer& answer) {
             Bsp_setSlotId(-1);
             answer << "done";
         }},
        {"Bsp_switchTypeName", [](Answer& answer) { answer << Bsp_switchTypeName(1); }},
        {"Bsp_trafFpgaTypeName", [](Answer& answer) { answer << Bsp_trafFpgaTypeName(1); }},
        {"Bsp_trafficBackplaneName", [](Answer& answer) { answer << Bsp_trafficBackplaneName(1); }},
        {"Led_nameToObject", [](Answer& answer) { answer << Led_nameToObject("red"); }},
        {"Led_objectToName", [](Answer& answer) { answer << Led_objectToName(Led_Green); }},
        {"Led_setState", [](Answer& answer) { answer << Led_setState(Led_Yellow, Led_Slow); }},
        {"Led_stateNameToStateObject",
         [](Answer& answer) { answer << Led_stateNameToStateObject("slow"); }},
        {"Led_stateObjectToStateName",
         [](Answer& answer) { answer << Led_stateObjectToStateName(Led_Fast); }},
        {"RState::RState(char const*)",
         [](Answer& answer) { answer << RState("R1A").getText().c_str(); }},
        {"RState::RState(int, int, int)",
         [](Answer& answer) { answer << RState(1, 107859, 999).getText().c_str(); }},
        {"RState::RState(" STRING " const&)",
         [](Answer& answer) { answer << RState(std::string("R12ZZZZ999")).getText().c_str(); }},
        {"RState::getMinorChar(int, int)",
         [](Answer& answer) { answer << RState::getMinorChar(3, 1); }},
        {"RState::getMinorIndex(char, int)",
         [](Answer& answer) { answer << RState::getMinorIndex('D', 1); }},
        {"RState::increment(IncrementType)",
         [](Answer& answer) {
             incremented([](RState& rstate) { rstate.increment(IncrementType::Auto); }, answer);
         }},
        {"RState::normalizeVersion()",
         [](Answer& answer) {
             incremented([](RState& rstate) { rstate.normalizeVersion(); }, answer);
         }},
        {"RState::operator<(RState const&) const",
         [](Answer& answer) { answer << (RState("R1A01") < RState("R1A02")); }},
        {"RState::operator==(RState const&) const",
         [](Answer& answer) { answer << (RState("R1A01") == RState("R1A")); }},
        {"RState::updateRState()",
         [](Answer& answer) {
             incremented([](RState& rstate) { rstate.updateRState(); }, answer);
         }},
        {"RState::updateVersion()",
         [](Answer& answer) {
             incremented([](RState& rstate) { rstate.updateVersion(); }, answer);
         }},
        {"RState_compare", [](Answer& answer) { answer << RState_compare("R1A01", "R1A02"); }},
        {"RState_fromVersion", fromVersion},
        {"RState_increment",
         [](Answer& answer) { increment(RState_increment, IncrementType::Auto, answer); }},
        {"RState_increment2",
         [](Answer& answer) { increment<const char*>(RState_increment2, "Major", answer); }},
        {"RState_incrementTypeName", [](Answer& answer) { answer << RState_incrementTypeName(2); }},
        {"RState_toVersion", toVersion},
        {"WarmDatabase_createObject",
         [](Answer& answer) { use(WarmDatabase_createObject, answer); }},
        {"WarmDatabase_getObjectData",
         [](Answer& answer) { use(WarmDatabase_getObjectData, answer); }},
        {"WarmDatabase_retrieveObject",
         [](Answer& answer) { use(WarmDatabase_retrieveObject, answer); }},
        {"operator<<(std::ostream&, RState const&)",
         [](Answer& answer) {
             std::ostringstream stream;
             stream << RState("R1A01");
             const testsupport::PlatformScope scope;
             answer << stream.str().c_str();
         }},
        {"os::bsp::WarmSlot::WarmSlot()",
         [](Answer& answer) {
             const WarmSlot slot;
             answer << "done";
         }},
        {"os::bsp::WarmSlot::get() const", [](Answer& answer) { answer << WarmSlot().get(); }},
        {"os::bsp::WarmSlot::set(int const&)",
         [](Answer& answer) {
             WarmSlot().set(-1);
             answer << "done";
         }},
        {"os::bsp::clearRadiolinkMode()",
         [](Answer& answer) { answer << os::bsp::clearRadiolinkMode(); }},
        {"os::bsp::dtcm::WarmDatabase::SemLockGuard::SemLockGuard(sem_t*)", guarded},
        {"os::bsp::dtcm::WarmDatabase::SemLockGuard::~SemLockGuard()", guarded},
        {"os::bsp::dtcm::WarmDatabase::createObject(" STRING " const&, void**, unsigned int, bool)",
         createObject},
        {"os::bsp::dtcm::WarmDatabase::getInstance()",
         [](Answer& answer) {
             database();
             answer << "done";
         }},
        {"os::bsp::dtcm::WarmDatabase::getNumberOfFreeBlocks() const",
         [](Answer& answer) { answer << (database().getNumberOfFreeBlocks() > 0); }},
        {"os::bsp::dtcm::WarmDatabase::getObjectData(" STRING
         " const&, void**, unsigned int, std::mutex**, bool&)",
         getObjectData},
        {"os::bsp::dtcm::WarmDatabase::getObjectSyncPointer(" STRING " const&)",
         [](Answer& answer) {
             // It takes no lock: the caller holds the semaphore.
             database().lock();
             answer << (database().getObjectSyncPointer("NONE") == nullptr);
             database().unlock();
         }},
        {"os::bsp::dtcm::WarmDatabase::lock()", lockedAndUnlocked},
        {"os::bsp::dtcm::WarmDatabase::logNamesOfUsedBlocks() const",
         [](Answer& answer) {
             database().logNamesOfUsedBlocks();
             answer << "done";
         }},
        {"os::bsp::dtcm::WarmDatabase::retrieveObject(" STRING
         " const&, void**, unsigned int, bool)",
         retrieveObject},
        {"os::bsp::dtcm::WarmDatabase::unlock()", lockedAndUnlocked},
        {"os::bsp::dtcm::WarmDatabase::validateObject(" STRING " const&, unsigned int)",
         [](Answer& answer) { answer << database().validateObject(Object, ObjectSize); }},
        {"os::bsp::getBoardId()", [](Answer& answer) { answer << os::bsp::getBoardId(); }},
        {"os::bsp::getBoardIdText()", [](Answer& answer) { answer << os::bsp::getBoardIdText(); }},
        {"os::bsp::getControlBackplane()",
         [](Answer& answer) { answer << os::bsp::getControlBackplane(); }},
        {"os::bsp::getDspType()", [](Answer& answer) { answer << os::bsp::getDspType(); }},
        {"os::bsp::getFpgaPath(char const*)",
         [](Answer& answer) { answer << os::bsp::getFpgaPath("pci"); }},
        {"os::bsp::getHwRevision()", [](Answer& answer) { answer << os::bsp::getHwRevision(); }},
        {"os::bsp::getLatestBoardIdText()",
         [](Answer& answer) { answer << os::bsp::getLatestBoardIdText(); }},
        {"os::bsp::getNumberOfChannels()",
         [](Answer& answer) { answer << os::bsp::getNumberOfChannels(); }},
        {"os::bsp::getNumberOfRadiolinks()",
         [](Answer& answer) { answer << os::bsp::getNumberOfRadiolinks(); }},
        {"os::bsp::getPlatformType()",
         [](Answer& answer) { answer << os::bsp::getPlatformType(); }},
        {"os::bsp::getProductId()", [](Answer& answer) { answer << os::bsp::getProductId(); }},
        {"os::bsp::getRadiolinkMode()",
         [](Answer& answer) { answer << os::bsp::getRadiolinkMode(); }},
        {"os::bsp::getResetType()", [](Answer& answer) { answer << os::bsp::getResetType(); }},
        {"os::bsp::getSwitchType()", [](Answer& answer) { answer << os::bsp::getSwitchType(); }},
        {"os::bsp::getTrafFpgaType()",
         [](Answer& answer) { answer << os::bsp::getTrafFpgaType(); }},
        {"os::bsp::getTrafficBackplane()",
         [](Answer& answer) { answer << os::bsp::getTrafficBackplane(); }},
        {"os::bsp::resetTypeToString[abi:cxx11](os::bsp::ResetType const&)",
         [](Answer& answer) {
             answer << os::bsp::resetTypeToString(os::bsp::ResetType::Watchdog).c_str();
         }},
        {"os::bsp::setRadiolinkMode(os::bsp::RadiolinkMode)",
         [](Answer& answer) { answer << os::bsp::setRadiolinkMode(os::bsp::RadiolinkMode::Rl5); }},
        {"os::bsp::slotInstance()",
         [](Answer& answer) { answer << os::bsp::slotInstance().get(); }},
    };
    return table;
}

#undef STRING

} // namespace interface
