#include "report/BoardReport.h"

#include "BoardDirectory.h"
#include "Bsp.h"
#include "HardwareCode.h"
#include "Led.h"
#include "SettingsFile.h"
#include "Text.h"
#include "WarmArea.h"
#include "board/Files.h"
#include "report/Failure.h"

#include <cstdlib>
#include <iomanip>

namespace
{

/** Writes one line: what it is about, and the fact. */
void write(std::ostream& out, const std::string& subject, const std::string& fact)
{
    out << std::setw(16) << std::left << subject << fact << '\n';
}

/** The text that a function answers, or why there is none. */
template <typename Answer> std::string answerOrReason(const Answer& answer)
{
    try {
        return answer();
    } catch (const std::exception& failure) {
        return failure.what();
    }
}

/** The variant that the layer works with, and whether the board's code says so. */
std::string variantText(const Board& board)
{
    const os::bsp::NxuHwVariant* const variant = Bsp_getNxuHwVariant();
    const std::string index = std::to_string(variant - os::bsp::hwVariants.data());
    try {
        const bool known = files::readExactly(board.eeprom(), Board::EepromSize) ==
                           hardwarecode::bytesOf(variant->code);
        return known ? index : index + " (the code is not known)";
    } catch (const Failure&) {
        return index + " (the code cannot be read)";
    }
}

void reportIdentity(std::ostream& out, const Board& board)
{
    // The layer answers here as it does for every program on this board.
    // NOLINTNEXTLINE(concurrency-mt-unsafe)
    ::setenv(boarddirectory::Variable, board.directory().c_str(), 1);
    write(out, "Hardware code", answerOrReason([&] {
              return hardwarecode::textOf(files::readExactly(board.eeprom(), Board::EepromSize));
          }));
    write(out, "Variant", variantText(board));
    write(out, "Product", nameOf(os::bsp::productIdNames, os::bsp::getProductId()));
    const int revision = os::bsp::getHwRevision();
    write(out, "Revision",
          std::to_string(revision) + " (" + nameOf(os::bsp::hwRevisionNames, revision) + ")");
    write(out, "Platform", nameOf(os::bsp::platformTypeNames, os::bsp::getPlatformType()));
}

std::string resetCauseText(const Board& board)
{
    const std::uint32_t cause = resetCauseOf(board);
    return std::to_string(cause) + " (" + nameOf(os::bsp::resetTypeNames, static_cast<int>(cause)) +
           ")";
}

void reportRestart(std::ostream& out, const Board& board)
{
    write(out, "Reset cause", answerOrReason([&] { return resetCauseText(board); }));
    write(out, "Cold marker", files::isThere(board.coldMarker()) ? "present" : "absent");
}

settings::Entries storeEntries(const std::filesystem::path& path)
{
    const auto contents = settings::read(path);
    return contents ? contents->entries : settings::Entries{};
}

void reportStore(std::ostream& out, const Board& board)
{
    std::string subject = "Store";
    try {
        const settings::Entries entries = storeEntries(board.store());
        if (entries.empty()) {
            write(out, subject, "empty");
        }
        for (const auto& [key, value] : entries) {
            write(out, subject, printable(key) + " = " + printable(value));
            subject.clear();
        }
    } catch (const std::exception& error) {
        write(out, subject, "cannot read '" + board.store().string() + "': " + error.what());
    }
}

std::string ledState(const Board& board, const std::string& led)
{
    constexpr std::size_t enough = 64;
    const std::string text = files::readStart(board.ledState(led), enough);
    // A plain file keeps the end of a longer former text, where the kernel's attribute does not.
    const unsigned int state = Led_stateNameToStateObject(text.c_str());
    return state < NoOfLedStates ? Led_stateObjectToStateName(state)
                                 : "unknown state '" + printable(text) + "'";
}

void reportLeds(std::ostream& out, const Board& board)
{
    for (unsigned int led = 0; led < NoOfLeds; ++led) {
        const std::string name = Led_objectToName(led);
        write(out, "LED " + name, answerOrReason([&] { return ledState(board, name); }));
    }
}

void reportBlocks(std::ostream& out, const WarmArea& area, bool dump)
{
    const std::vector<WarmArea::Block> blocks = area.usedBlocks();
    write(out, "Warm area",
          std::to_string(blocks.size()) + " of " + std::to_string(area.numberOfBlocks()) +
              " blocks used");
    for (const WarmArea::Block& block : blocks) {
        write(out, "Block " + std::to_string(block.number), printable(block.name));
        if (dump) {
            out << hexDump(block.bytes, block.offset);
        }
    }
    if (const auto slotId = area.slotId()) {
        write(out, "Slot id", std::to_string(*slotId));
    }
}

bool isColdByRegister(const Board& board)
{
    try {
        return resetCauseOf(board) == static_cast<std::uint32_t>(os::bsp::ResetType::Cold);
    } catch (const Failure&) {
        return false;
    }
}

/** Whether the layer takes the last restart for a cold one, when it starts there. */
bool countsAsCold(const Board& board)
{
    if (os::bsp::getPlatformType() == os::bsp::PlatformType::Nxu4) {
        return isColdByRegister(board);
    }
    return os::bsp::getProductId() != os::bsp::ProductId::KT4851_4 ||
           files::isThere(board.coldMarker());
}

/** Whether the area holds what power-up left there, and the first program will clear it. */
bool isNotClearedYet(const WarmArea& area, const Board& board)
{
    // While a program uses the area there is its semaphore, which has no '/' in its file's name.
    const std::string semaphore = std::string("sem.") + (os::bsp::dtcm::SemaphoreName + 1);
    return !area.isWritten() && !files::isThere(board.sharedMemory() / semaphore) &&
           countsAsCold(board);
}

void reportWarmArea(std::ostream& out, const Board& board, bool dump)
{
    try {
        const WarmArea area(files::readExactly(board.dtcm(), Board::DtcmSize));
        if (isNotClearedYet(area, board)) {
            write(out, "Warm area", "not cleared yet");
        } else {
            reportBlocks(out, area, dump);
        }
    } catch (const Failure& failure) {
        write(out, "Warm area", failure.what());
    }
}

} // namespace

void reportBoard(std::ostream& out, const Board& board, bool dump)
{
    reportIdentity(out, board);
    reportRestart(out, board);
    reportStore(out, board);
    reportLeds(out, board);
    reportWarmArea(out, board, dump);
}
