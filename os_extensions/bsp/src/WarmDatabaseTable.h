#ifndef BSP_WARMDATABASETABLE_H
#define BSP_WARMDATABASETABLE_H

#include "WarmDatabaseLayout.h"

#include <cstdint>
#include <cstring>
#include <string>

namespace os
{
namespace bsp
{
namespace dtcm
{

/** Where a scan of the table ended. */
struct ScanResult
{
    enum Kind
    {
        Found,     /**< The block has the name. */
        FreeBlock, /**< The block is the first free one; no block before it has the name. */
        Full       /**< All blocks have other names. */
    };

    Kind kind;
    unsigned int index; /**< Of the block. */
};

/** The table of blocks. An area that could not be made has none. */
class BlockTable
{
public:
    explicit BlockTable(unsigned char* area)
        : m_blocks(reinterpret_cast<Block*>(area)), m_size(area == nullptr ? 0 : NumberOfBlocks)
    {}

    unsigned int size() const { return m_size; }
    Block& operator[](unsigned int index) const { return m_blocks[index]; }

    bool isFree(unsigned int index) const
    {
        return __atomic_load_n(&m_blocks[index].name[0], __ATOMIC_RELAXED) == 0;
    }

    /** Looks for a name, up to the first free block. The caller holds the semaphore. */
    ScanResult scan(const std::string& name) const
    {
        unsigned int index = 0;
        for (; index < m_size; ++index) {
            if (isFree(index)) {
                return {ScanResult::FreeBlock, index};
            }
            if (isNameOf(m_blocks[index], name)) {
                return {ScanResult::Found, index};
            }
        }
        return {ScanResult::Full, index};
    }

    /** Name of a block; empty for a free one. The caller need not hold the semaphore. */
    std::string nameOf(unsigned int index) const;

    /** Gives a block a name, cut at its first NUL and at 15 characters, and clears its data. */
    void reset(unsigned int index, const std::string& name) const;

private:
    /** Whether a used block has the name. */
    static bool isNameOf(const Block& block, const std::string& name)
    {
        const std::size_t length = name.size();
        return length <= MaxNameLength && block.name[length] == 0 &&
               endsAlike(block.name, name.data(), length) &&
               isEqualText(block.name, name.data(), length);
    }

    /** Tells most names apart at once, since the names of a board's objects often begin alike. */
    static bool endsAlike(const unsigned char* stored, const char* text, std::size_t length)
    {
        return length == 0 || stored[length - 1] == static_cast<unsigned char>(text[length - 1]);
    }

    /**
     * Whether two texts of that length are the same and hold no NUL, where the stored one would
     * end. Words of the area are read whole, which is why names are compared from their beginning.
     */
    static bool isEqualText(const unsigned char* stored, const char* text, std::size_t length)
    {
        std::size_t i = 0;
        for (; i + sizeof(std::uint32_t) <= length; i += sizeof(std::uint32_t)) {
            const std::uint32_t word = wordAt(stored + i);
            if (word != wordAt(text + i) || hasZeroByte(word)) {
                return false;
            }
        }
        while (i < length && stored[i] == static_cast<unsigned char>(text[i]) && stored[i] != 0) {
            ++i;
        }
        return i == length;
    }

    static std::uint32_t wordAt(const void* bytes)
    {
        std::uint32_t word = 0;
        std::memcpy(&word, bytes, sizeof(word));
        return word;
    }

    static bool hasZeroByte(std::uint32_t word)
    {
        // A byte borrows from the one above only when it is 0.
        return ((word - 0x01010101U) & ~word & 0x80808080U) != 0;
    }

    Block* m_blocks;
    unsigned int m_size;
};

} // namespace dtcm
} // namespace bsp
} // namespace os

#endif
