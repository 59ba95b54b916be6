#ifndef TOOLS_COMMON_WARMAREA_H
#define TOOLS_COMMON_WARMAREA_H

#include "WarmLayout.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/** A copy of a board's warm area, whatever it holds: after power-up that is anything. */
class WarmArea
{
public:
    static constexpr std::size_t BlockSize = sizeof(os::bsp::dtcm::Block);
    static constexpr std::size_t NameSize = os::bsp::dtcm::NameSize;

    struct Block
    {
        std::size_t number; /**< Counted from 1. */
        std::size_t offset; /**< From the start of the area. */
        std::string_view name;
        std::string_view bytes; /**< The whole block. */
    };

    explicit WarmArea(std::string bytes) : m_bytes(std::move(bytes)) {}
    WarmArea(const WarmArea&) = delete;
    WarmArea& operator=(const WarmArea&) = delete;

    std::size_t numberOfBlocks() const { return m_bytes.size() / BlockSize; }

    /** A block, counted from 0; it points into this object. */
    Block block(std::size_t index) const;

    /** Every block with a name; they point into this object. */
    std::vector<Block> usedBlocks() const;

    /**
     * Whether something in here was made by the layer, and not by power-up.
     *
     * The layer zeroes what it takes, and puts names into the first blocks, each with a zero in its
     * last byte. What programs damage later still has many zeros, or one name of printable
     * characters that ends in zeros. Bytes at random have that once in some ten million times.
     */
    bool isWritten() const;

    /** The object that programs find by a name, if they find one: its bytes point in here. */
    std::optional<Block> find(std::string_view name) const;

    /** The slot id, when there is the object that keeps it. */
    std::optional<std::int32_t> slotId() const;

private:
    bool isTable() const;
    bool hasPlainName() const;
    bool hasManyZeros() const;

    std::string m_bytes;
};

#endif
