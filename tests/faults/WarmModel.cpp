#include "WarmModel.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace faults
{

namespace
{

/** The objects as a user of the store finds or makes them. */
class Model
{
public:
    explicit Model(std::string area) : m_area(std::move(area))
    {
        bool isCreated = false;
        const std::size_t old = take("OLD", isCreated);
        m_answers =
            isCreated ? "OLD is new" : "OLD is " + printable(m_area.substr(old, ObjectSize));
        take("NEW", isCreated);
        m_answers += isCreated ? ", NEW is new" : ", NEW is there";
        const std::size_t slot = take("SLOT", isCreated);
        std::int32_t id = -1;
        std::int32_t locked = 0;
        if (!isCreated) {
            std::memcpy(&id, m_area.data() + slot, sizeof id);
            // On this machine the mutex is aligned to 8 bytes, and its first word is 0 when free.
            std::memcpy(&locked, m_area.data() + slot + 8, sizeof locked);
        }
        if (locked != 0) {
            m_answers += "waits";
            return;
        }
        std::size_t free = 0;
        for (std::size_t block = 0; block < AreaSize; block += BlockSize) {
            free += m_area[block] == '\0' ? 1 : 0;
        }
        m_answers += ", slot " + std::to_string(id) + ", " + std::to_string(free) + " free";
    }

    const std::string& answers() const { return m_answers; }

private:
    /** Finds an object or makes one; where its data begins. */
    std::size_t take(const std::string& name, bool& isCreated)
    {
        for (std::size_t block = 0; block < AreaSize; block += BlockSize) {
            isCreated = m_area[block] == '\0';
            if (isCreated) {
                m_area.replace(block, NameSize, name + std::string(NameSize - name.size(), '\0'));
                m_area.replace(block + NameSize, BlockSize - NameSize,
                               std::string(BlockSize - NameSize, '\0'));
            }
            if (m_area.compare(block, name.size() + 1, name.c_str(), name.size() + 1) == 0) {
                return block + NameSize;
            }
        }
        throw std::logic_error("the area is full");
    }

    std::string m_area;
    std::string m_answers;
};

} // namespace

std::string firstArea()
{
    std::string area(AreaSize, '\0');
    area.replace(0, 3, "OLD");
    area.replace(NameSize, OldData.size(), OldData);
    area.replace(BlockSize + NameSize, 12, "some remains");
    area.replace(BlockSize + 1000, 4, "more");
    return area;
}

std::string printable(std::string bytes)
{
    std::replace(bytes.begin(), bytes.end(), '\0', '.');
    return bytes;
}

std::string modelAnswers(const SharedState& state)
{
    const bool isTaken = state.semaphore && state.semaphore->at(0) == '\0';
    return isTaken ? "waits" : Model(state.area).answers();
}

std::string modelAnswersOfNewcomer(SharedState state, ResetCause cause)
{
    if (!state.semaphore && cause == Cold) {
        state.area.assign(AreaSize, '\0');
    }
    return modelAnswers(state);
}

SharedState withoutOwner(SharedState state)
{
    for (std::size_t block = 0; block < AreaSize; block += BlockSize) {
        if (state.area.compare(block, 5, "SLOT", 5) == 0) {
            state.area.replace(block + NameSize + 8 + 8, 4, "....");
        }
    }
    return state;
}

} // namespace faults
