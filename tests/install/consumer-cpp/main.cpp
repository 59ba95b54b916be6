// A program of a customer's, in C++11: classes, name tables and constants of the installed library.

#include <Bsp.h>
#include <Led.h>
#include <RState.h>
#include <WarmDatabase.h>
#include <WarmSlot.h>

#include <algorithm>
#include <iostream>
#include <mutex>

using os::bsp::dtcm::WarmDatabase;

int main()
{
    std::cout << "product " << nameOf(os::bsp::productIdNames, os::bsp::ProductId::NXU4A) << ", "
              << nameOf(os::bsp::productIdNames, -1) << '\n';
    std::cout << "reset " << os::bsp::resetTypeToString(os::bsp::ResetType::Watchdog) << '\n';
    std::cout << "switch " << nameOf(os::bsp::switchTypeNames, os::bsp::getSwitchType()) << '\n';

    RState rstate(std::string("R9AC"));
    rstate.increment(IncrementType::Minor);
    // std::max takes its arguments' addresses.
    std::cout << rstate << " < " << RState(10, 0, 0) << ": " << (rstate < RState(10, 0, 0)) << ", "
              << std::max(0, RState::MaxRStateLen) << " bytes\n";

    void* object = nullptr;
    std::mutex* sync = nullptr;
    bool created = false;
    if (WarmDatabase::getInstance().getObjectData("consumer", &object, sizeof(int), &sync, created))
    {
        std::lock_guard<std::mutex> guard(*sync);
        std::cout << "object " << (created ? "created" : "found") << ", "
                  << WarmDatabase::getInstance().getNumberOfFreeBlocks() << " blocks free\n";
    }
    os::bsp::WarmSlot slot;
    slot.set(7);
    std::cout << "slot " << os::bsp::slotInstance().get() << '\n';
}
