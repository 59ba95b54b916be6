/**
 * @file
 * @brief The board ID, its texts and the number of channels for every product and revision, also
 * those that no variant has.
 */
#include "Bsp.h"
#include "FakeBoard.h"
#include "RecordingTrace.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <climits>
#include <optional>

namespace
{

using os::bsp::ProductId;
using recordingtrace::takeLines;
using namespace testing;

/** What the layer's own queries answer. */
struct Script
{
    int product;
    int revision;
};

std::optional<Script> script; // Without it they are the layer's.
std::vector<std::string> questions;

} // namespace

// Calls of the layer's own queries from other files come here.
ProductId realProductId() __asm__("__real__ZN2os3bsp12getProductIdEv");
ProductId scriptedProductId() __asm__("__wrap__ZN2os3bsp12getProductIdEv");
ProductId scriptedProductId()
{
    if (!script) {
        return realProductId();
    }
    questions.emplace_back("product");
    return static_cast<ProductId>(script->product);
}

int realHwRevision() __asm__("__real__ZN2os3bsp13getHwRevisionEv");
int scriptedHwRevision() __asm__("__wrap__ZN2os3bsp13getHwRevisionEv");
int scriptedHwRevision()
{
    if (!script) {
        return realHwRevision();
    }
    questions.emplace_back("revision");
    return script->revision;
}

namespace
{

void setBoard(int product, int revision)
{
    script = {product, revision};
}

struct Board
{
    int product;
    int revision;
    const char* text;
};

constexpr Board boards[] = {
    {1, 0, "KT4752_P2"},    {1, 1, "KT4752_P3"},    {1, 2, "KT4752_P4"},    {1, 3, "KT4752_P5"},
    {1, 4, "KT4752_R2_P1"}, {1, 5, "KT4752_R2_P2"}, {1, 6, "KT4752_XPIC"},  {0, 0, "KT4754_P1"},
    {0, 1, "KT4754_P2"},    {0, 2, "KT4754_P3"},    {2, 0, "KT4751_REV_A"}, {3, 0, "VX4791_REV_A"},
    {4, 0, "RG4792_P2"},    {4, 1, "RG4792_P3"},    {4, 2, "RG4792_P4"},    {4, 3, "RG4792_P5"},
    {4, 4, "RG4792_R2_P1"}, {4, 5, "RG4792_R2_P2"}, {4, 6, "RG4792_R2_P3"},
};

TEST(BoardIdMap, HasTheKnownBoardsInOrder)
{
    ASSERT_EQ(std::size(Bsp_boardIdMap), std::size(boards));
    for (std::size_t row = 0; row < std::size(boards); ++row) {
        const BoardIdEntry& entry = Bsp_boardIdMap[row];
        EXPECT_EQ(entry.boardId, boards[row].product * 65536 + boards[row].revision) << row;
        EXPECT_STREQ(entry.text, boards[row].text);
        const auto* padding = std::find(std::begin(entry.text), std::end(entry.text), '\0');
        EXPECT_TRUE(std::all_of(padding, std::end(entry.text), [](char c) { return c == '\0'; }));
    }
}

TEST(BoardIdMap, HasRowsOfAnIdAndATextAlone)
{
    EXPECT_EQ(sizeof(BoardIdEntry), 36U);
    EXPECT_EQ(offsetof(BoardIdEntry, boardId), 0U);
    EXPECT_EQ(offsetof(BoardIdEntry, text), 4U);
    EXPECT_EQ(sizeof Bsp_boardIdMap, 19U * 36U);
}

TEST(BoardId, HasTheProductInTheUpperHalf)
{
    setBoard(1, 4);
    EXPECT_EQ(os::bsp::getBoardId(), 65540);
    EXPECT_EQ(Bsp_getBoardId(), 65540);
    setBoard(18, 65535);
    EXPECT_EQ(os::bsp::getBoardId(), 18 * 65536 + 65535);
}

TEST(BoardId, TakesTheRevisionAsItIs)
{
    setBoard(2, 0x50001);
    EXPECT_EQ(os::bsp::getBoardId(), 0x70001);
    setBoard(5, -1);
    EXPECT_EQ(os::bsp::getBoardId(), -1);
    setBoard(5, INT_MIN);
    EXPECT_EQ(os::bsp::getBoardId(), INT_MIN + 5 * 65536);
}

TEST(BoardId, AsksForTheProductFirst)
{
    setBoard(0, 0);
    os::bsp::getBoardId();
    EXPECT_THAT(questions, ElementsAre("product", "revision"));
}

TEST(BoardIdText, IsThatOfTheKnownBoard)
{
    for (const Board& board : boards) {
        setBoard(board.product, board.revision);
        EXPECT_STREQ(os::bsp::getBoardIdText(), board.text);
        EXPECT_STREQ(Bsp_getBoardIdText(), board.text);
    }
}

TEST(BoardIdText, IsFixedForUnknownBoards)
{
    for (const auto& [product, revision] :
         {std::pair{5, 0}, {1, 7}, {0, 3}, {2, 1}, {3, 1}, {4, 7}, {18, 0}, {1, -1}, {0, INT_MIN}})
    {
        setBoard(product, revision);
        EXPECT_STREQ(os::bsp::getBoardIdText(), "Unknown board revision");
        EXPECT_STREQ(Bsp_getBoardIdText(), "Unknown board revision");
    }
}

TEST(LatestBoardIdText, IsTheNewestOfProductZero)
{
    setBoard(0, 0);
    EXPECT_STREQ(os::bsp::getLatestBoardIdText(), "KT4754_P3");
    EXPECT_STREQ(Bsp_getLatestBoardIdText(), "KT4754_P3");
}

TEST(LatestBoardIdText, IsUnknownForEveryOtherProduct)
{
    for (const int other : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18}) {
        setBoard(other, 0);
        EXPECT_STREQ(os::bsp::getLatestBoardIdText(), "Unknown board revision") << other;
        EXPECT_STREQ(Bsp_getLatestBoardIdText(), "Unknown board revision") << other;
    }
}

TEST(NumberOfChannels, IsOneForSmallProducts)
{
    for (const int small : {1, 2, 3, 4, 6, 8, 12, 15, 17}) {
        setBoard(small, 0);
        EXPECT_EQ(os::bsp::getNumberOfChannels(), 1U) << small;
        EXPECT_EQ(Bsp_getNumberOfChannels(), 1U) << small;
        takeLines(6);
    }
}

TEST(NumberOfChannels, IsTwoForLargeProducts)
{
    for (const int large : {5, 7, 9, 10, 11, 13, 14, 16}) {
        setBoard(large, 0);
        EXPECT_EQ(os::bsp::getNumberOfChannels(), 2U) << large;
        EXPECT_EQ(Bsp_getNumberOfChannels(), 2U) << large;
    }
}

TEST(NumberOfChannels, IsWrittenWithTheEntry)
{
    setBoard(5, 0);
    os::bsp::getNumberOfChannels();
    EXPECT_THAT(takeLines(), ElementsAre("bsp.core 6 ENTER getNumberOfChannels()",
                                         "bsp.core 7 getNumberOfChannels(): numberOfChannels = 2"));
    EXPECT_THAT(questions, ElementsAre("product"));
}

TEST(NumberOfChannels, IsOneForUnknownProductsWithAMessage)
{
    for (const int unknown : {0, 18, 19, -1}) {
        setBoard(unknown, 0);
        EXPECT_EQ(os::bsp::getNumberOfChannels(), 1U) << unknown;
        EXPECT_THAT(takeLines(),
                    ElementsAre("bsp.core 6 ENTER getNumberOfChannels()",
                                "bsp.core 1 getNumberOfChannels(): Unknown product id: " +
                                    std::to_string(unknown),
                                "bsp.core 7 getNumberOfChannels(): numberOfChannels = 1"));
    }
}

TEST(NumberOfChannels, AsksForTheProductAgainForItsMessageOnly)
{
    setBoard(18, 0);
    recordingtrace::setLevel("bsp.core", 0);
    EXPECT_EQ(os::bsp::getNumberOfChannels(), 1U);
    EXPECT_THAT(questions, ElementsAre("product"));
    recordingtrace::setLevel("bsp.core", 1);
    EXPECT_EQ(os::bsp::getNumberOfChannels(), 1U);
    EXPECT_THAT(questions, ElementsAre("product", "product", "product"));
    EXPECT_THAT(takeLines(),
                ElementsAre("bsp.core 1 getNumberOfChannels(): Unknown product id: 18"));
}

TEST(BoardId, TouchesTheBoardOnlyThroughProductAndRevision)
{
    setBoard(0, 0);
    os::bsp::getBoardIdText();
    os::bsp::getLatestBoardIdText();
    EXPECT_EQ(fakeboard::eeprom().reads, 0);
    EXPECT_THAT(takeLines(), IsEmpty());
}

} // namespace
