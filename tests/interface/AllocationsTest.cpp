/**
 * @file
 * @brief How often each function of the interface takes memory from the heap, exactly.
 *
 * What the platform and the trace library take is theirs. A number that falls is entered here; one
 * that rises needs a reason.
 */
#include "FaultyProcess.h"
#include "Namespaces.h"

#include <gtest/gtest.h>

#include <map>

namespace
{

using interface::Case;
using interface::Operation;

struct Allocations
{
    std::size_t first; /**< In the first call of a process. */
    std::size_t later; /**< In each later one. */
};

#define STRING "std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >"

/** To open the store: two in sem_open, and a mutex for the device of the reset register. */
constexpr Allocations Store{3, 0};

/** Those that take any. */
const std::map<std::string, Allocations>& allocations()
{
    static const std::map<std::string, Allocations> table{
        {"Bsp_createDtcmObject", Store},
        {"Bsp_getDtcmObjectData", Store},
        // To read, the stream and its buffer, zlib's state and its window.
        {"Bsp_getKernelRState", {5, 5}},
        {"Bsp_getResetType", {1, 0}},
        {"Bsp_getSlotId", Store},
        {"Bsp_getUbootProductInfo", {1, 1}},
        {"Bsp_retrieveDtcmObject", Store},
        {"Bsp_setSlotId", Store},
        {"WarmDatabase_createObject", Store},
        {"WarmDatabase_getObjectData", Store},
        {"WarmDatabase_retrieveObject", Store},
        {"os::bsp::WarmSlot::WarmSlot()", Store},
        {"os::bsp::WarmSlot::get() const", Store},
        {"os::bsp::WarmSlot::set(int const&)", Store},
        {"os::bsp::dtcm::WarmDatabase::createObject(" STRING " const&, void**, unsigned int, bool)",
         Store},
        {"os::bsp::dtcm::WarmDatabase::getInstance()", Store},
        {"os::bsp::dtcm::WarmDatabase::getNumberOfFreeBlocks() const", Store},
        {"os::bsp::dtcm::WarmDatabase::getObjectData(" STRING
         " const&, void**, unsigned int, std::mutex**, bool&)",
         Store},
        {"os::bsp::dtcm::WarmDatabase::getObjectSyncPointer(" STRING " const&)", Store},
        {"os::bsp::dtcm::WarmDatabase::lock()", Store},
        {"os::bsp::dtcm::WarmDatabase::logNamesOfUsedBlocks() const", Store},
        {"os::bsp::dtcm::WarmDatabase::retrieveObject(" STRING
         " const&, void**, unsigned int, bool)",
         Store},
        {"os::bsp::dtcm::WarmDatabase::unlock()", Store},
        {"os::bsp::dtcm::WarmDatabase::validateObject(" STRING " const&, unsigned int)", Store},
        {"os::bsp::getResetType()", {1, 0}},
        {"os::bsp::slotInstance()", Store},
    };
    return table;
}

#undef STRING

std::size_t countedAllocations(const Operation& operation, bool isLater)
{
    Case what{operation.name, operation.perform};
    what.isRepeated = isLater;
    const interposed::Record record = interface::perform(what, std::nullopt).record;
    std::size_t count = 0;
    for (std::size_t call = 0; call < record.size; ++call) {
        count += interposed::nameOf(record, call).rfind("allocation", 0) == 0 ? 1 : 0;
    }
    return count;
}

TEST(InterfaceAllocations, AreAsManyAsEntered)
{
    if (interface::isTraced()) {
        GTEST_SKIP() << testsupport::NoNamespaces << interface::NeedsNoTracer;
    }
    for (const Operation& operation : interface::operations()) {
        SCOPED_TRACE(operation.name);
        const auto entry = allocations().find(operation.name);
        const Allocations expected =
            entry == allocations().end() ? Allocations{0, 0} : entry->second;
        EXPECT_EQ(countedAllocations(operation, false), expected.first) << "in the first call";
        EXPECT_EQ(countedAllocations(operation, true), expected.later) << "in a later call";
    }
}

} // namespace
