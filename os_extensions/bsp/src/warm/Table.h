#ifndef BSP_SRC_WARM_TABLE_H
#define BSP_SRC_WARM_TABLE_H

#include "HvxMessage.h"
#include "WarmLayout.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <string>
#include <string_view>

#include <pthread.h>

namespace os::bsp::dtcm
{

/** Channel "Bsp.WarmDatabase". */
extern HvxTrace warmDatabaseTrace;

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

/** The name that a block had when it was read. */
struct BlockName
{
    std::array<char, NameSize> bytes;

    /** In an area that was never cleared a name need not end. */
    std::string_view text() const { return {bytes.data(), ::strnlen(bytes.data(), NameSize)}; }
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
        const char* text = name.data();
        const std::size_t length = name.size();
        const bool canExist = length > 0 && length <= MaxNameLength;
        unsigned int index = 0;
        for (; index < m_size; ++index) {
            const unsigned char* stored = m_blocks[index].name;
            if (stored[0] == 0) {
                return {ScanResult::FreeBlock, index};
            }
            if (canExist && isName(stored, text, length)) {
                return {ScanResult::Found, index};
            }
        }
        return {ScanResult::Full, index};
    }

    /** Name of a block; empty for a free one. The caller need not hold the semaphore. */
    BlockName nameOf(unsigned int index) const;

    /** Gives a block a name, cut at its first NUL and at 15 characters, and clears its data. */
    void reset(unsigned int index, const std::string& name) const;

private:
    /**
     * Whether a block's name is that text of 1 to 15 characters. The end is compared first, since
     * the names of a board's objects often begin alike; the rest from the beginning, because words
     * of the area are read where they are aligned.
     */
    static bool isName(const unsigned char* stored, const char* text, std::size_t length)
    {
        if (stored[length] != 0 || !isSame(stored[length - 1], text[length - 1])) {
            return false;
        }
        std::size_t i = 0;
        for (; i + sizeof(std::uint32_t) <= length; i += sizeof(std::uint32_t)) {
            const std::uint32_t word = wordAt(stored + i);
            if (word != wordAt(text + i) || hasZeroByte(word)) {
                return false;
            }
        }
        for (; i + 1 < length; ++i) {
            if (!isSame(stored[i], text[i])) {
                return false;
            }
        }
        return true;
    }

    /** A NUL in the text is never the same: the block's name would end there. */
    static bool isSame(unsigned char stored, char character)
    {
        return stored != 0 && stored == static_cast<unsigned char>(character);
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

} // namespace os::bsp::dtcm

#endif
