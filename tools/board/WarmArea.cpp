#include "WarmArea.h"

#include <algorithm>

WarmArea::Block WarmArea::block(std::size_t index) const
{
    const std::size_t offset = index * BlockSize;
    const std::string_view bytes = std::string_view(m_bytes).substr(offset, BlockSize);
    const std::string_view name = bytes.substr(0, NameSize);
    return {index + 1, offset, name.substr(0, name.find('\0')), bytes};
}

std::vector<WarmArea::Block> WarmArea::usedBlocks() const
{
    std::vector<Block> blocks;
    for (std::size_t index = 0; index < numberOfBlocks(); ++index) {
        const Block candidate = block(index);
        if (!candidate.name.empty()) {
            blocks.push_back(candidate);
        }
    }
    return blocks;
}

std::optional<std::int32_t> WarmArea::slotId() const
{
    // Programs look for an object up to the first free block.
    for (std::size_t index = 0; index < numberOfBlocks(); ++index) {
        const Block candidate = block(index);
        if (candidate.name.empty()) {
            return std::nullopt;
        }
        if (candidate.name == "SLOT") {
            std::int32_t slotId = 0;
            std::copy_n(candidate.bytes.data() + NameSize, sizeof slotId,
                        reinterpret_cast<char*>(&slotId));
            return slotId;
        }
    }
    return std::nullopt;
}
