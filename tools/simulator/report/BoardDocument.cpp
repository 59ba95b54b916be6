#include "report/BoardDocument.h"

#include "BoardDirectory.h"
#include "BoardFacts.h"
#include "Bsp.h"
#include "Led.h"
#include "SharedMemory.h"
#include "board/Files.h"

#include <cstdlib>

namespace
{

/** What reading gives, or why it fails. */
template <typename Read> auto readingOf(const Read& read)
{
    using Value = decltype(read());
    try {
        return Reading<Value>(read());
    } catch (const std::exception& failure) {
        return Reading<Value>::unknown(failure.what());
    }
}

/** The layer looks at the host's mark here, where it looks at the board's on the board. */
os::bsp::ResetType resetTypeOf(const facts::RawBoard& raw)
{
    using os::bsp::ResetType;
    if (os::bsp::getPlatformType() == os::bsp::PlatformType::Nxu4) {
        return raw.resetCause.isKnown() ? static_cast<ResetType>(*raw.resetCause)
                                        : ResetType::Unknown;
    }
    const bool isWarm = os::bsp::getProductId() == os::bsp::ProductId::KT4851_4 && !raw.coldMarker;
    return isWarm ? ResetType::Warm : ResetType::Cold;
}

} // namespace

void writeBoardDocument(std::ostream& out, const Board& board)
{
    // The layer answers here as it does for every program on this board, but for what lies outside
    // the board's directory there.
    // NOLINTNEXTLINE(concurrency-mt-unsafe)
    ::setenv(boarddirectory::Variable, board.directory().c_str(), 1);
    facts::RawBoard raw;
    raw.hardwareCode =
        readingOf([&] { return files::readExactly(board.eeprom(), Board::EepromSize); });
    raw.resetCause = readingOf([&] { return resetCauseOf(board); });
    raw.coldMarker = files::isThere(board.coldMarker());
    raw.resetType = resetTypeOf(raw);
    raw.settings = facts::readSettings();
    constexpr std::size_t longestState = 64;
    for (unsigned int led = 0; led < NoOfLeds; ++led) {
        const std::string name = Led_objectToName(led);
        raw.leds.push_back({name, readingOf([&] {
                                return files::readStart(board.ledState(name), longestState);
                            })});
    }
    raw.warmArea = readingOf([&] { return files::readExactly(board.dtcm(), Board::DtcmSize); });
    raw.isWarmAreaInUse = files::isThere(board.sharedMemory() / sharedname::Semaphore);
    Json document = facts::document("board");
    document["board"] = facts::boardFacts(raw);
    out << facts::textOf(document);
}
