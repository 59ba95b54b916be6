#include "warm/Table.h"

#include <cstring>

namespace os::bsp::dtcm
{

// Names are listed without the semaphore while others write them: byte by byte, each one whole.

BlockName BlockTable::nameOf(unsigned int index) const
{
    BlockName name;
    for (std::size_t i = 0; i < NameSize; ++i) {
        name.bytes[i] =
            static_cast<char>(__atomic_load_n(&m_blocks[index].name[i], __ATOMIC_RELAXED));
    }
    return name;
}

void BlockTable::reset(unsigned int index, const std::string& name) const
{
    char text[NameSize] = {};
    std::strncpy(text, name.c_str(), MaxNameLength);
    for (std::size_t i = 0; i < NameSize; ++i) {
        __atomic_store_n(&m_blocks[index].name[i], static_cast<unsigned char>(text[i]),
                         __ATOMIC_RELAXED);
    }
    std::memset(m_blocks[index].data, 0, sizeof(m_blocks[index].data));
}

} // namespace os::bsp::dtcm
