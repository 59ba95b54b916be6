/**
 * @file
 * @brief Fuzzes the store of warm objects: any contents of the area, then any operations on it.
 *
 * The model keeps a copy of the area; after each operation both have the same 32768 bytes. Pages
 * that cannot be read stand before and behind the area.
 */
#include "Expect.h"
#include "FakeDevices.h"
#include "KeptTrace.h"
#include "WarmDatabase.h"
#include "WarmSlot.h"

#include <array>
#include <cstring>

#include <pthread.h>
#include <sys/mman.h>

#include <fuzzer/FuzzedDataProvider.h>

namespace
{

using fuzz::expectEqual;
using os::bsp::dtcm::WarmDatabase;
using Messages = std::vector<std::string>;

constexpr std::size_t AreaSize = 32768;
constexpr std::size_t BlockSize = 1024;
constexpr std::size_t Blocks = 32;
constexpr std::size_t NameSize = 16;
constexpr std::size_t PageSize = 4096;

unsigned char* mapped = nullptr;

} // namespace

extern "C" void* __real_mmap64(void* address, std::size_t size, int protection, int flags, int fd,
                               off_t offset); // NOLINT(bugprone-reserved-identifier)
// NOLINTNEXTLINE(bugprone-reserved-identifier): the linker's name
extern "C" void* __wrap_mmap64(void* address, std::size_t size, int protection, int flags, int fd,
                               off_t offset)
{
    if (size == AreaSize && mapped == nullptr) {
        auto* const room = static_cast<unsigned char*>(__real_mmap64(
            nullptr, AreaSize + 2 * PageSize, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        mapped = static_cast<unsigned char*>(
            __real_mmap64(room + PageSize, AreaSize, protection, flags | MAP_FIXED, fd, offset));
        return mapped;
    }
    return __real_mmap64(address, size, protection, flags, fd, offset);
}

namespace
{

/** The store by its definition, on a copy of the area. */
class Model
{
public:
    explicit Model(std::string area) : m_area(std::move(area)) {}

    const std::string& area() const { return m_area; }
    Messages& messages() { return m_messages; }

    bool validate(const std::string& name, unsigned int size)
    {
        if (name.size() > NameSize - 1) {
            say(1, "validateObject",
                "Error: blockName " + name + " with length " + std::to_string(name.size()) +
                    " is larger than the allowed maximum of 15");
            return false;
        }
        if (size > BlockSize - NameSize) {
            say(1, "validateObject",
                "Error: objectSize: " + std::to_string(size) + " exceeds the maximum size: 1008");
            return false;
        }
        return true;
    }

    /** The block of the object, or -1. */
    long create(const std::string& name, unsigned int size)
    {
        if (!validate(name, size)) {
            return -1;
        }
        std::size_t block = 0;
        while (block < Blocks && !isFree(block) && !has(block, name)) {
            ++block;
        }
        if (block == Blocks) {
            say(1, "createObject", "Error: DTCM is out of space.");
            return -1;
        }
        if (!isFree(block)) {
            say(2, "createObject",
                "Warning: object for block " + name +
                    "has been requested to be created, but it was already present in warm area");
        }
        const std::string stored = name.c_str();
        m_area.replace(block * BlockSize, BlockSize, BlockSize, '\0');
        m_area.replace(block * BlockSize, stored.size(), stored);
        say(5, "createObject",
            "Created object " + name + " in block " + std::to_string(block + 1) +
                ". Size of object is " + std::to_string(size));
        return static_cast<long>(block);
    }

    long retrieve(const std::string& name, unsigned int size)
    {
        const long block = validate(name, size) ? find(name) : -1;
        if (block >= 0) {
            say(5, "retrieveObject",
                "Retrieved object " + name + " from block " + std::to_string(block + 1) +
                    ". Size of object is " + std::to_string(size));
        }
        return block;
    }

    /** The block whose mutex it is, or -1. */
    long sync(const std::string& name)
    {
        const long block = find(name);
        if (block >= 0) {
            say(5, "getObjectSyncPointer",
                "Sync object for " + name + " found for block " + std::to_string(block + 1));
        }
        return block;
    }

    unsigned int freeBlocks()
    {
        unsigned int count = 0;
        for (std::size_t block = 0; block < Blocks; ++block) {
            count += isFree(block) ? 1 : 0;
        }
        say(5, "getNumberOfFreeBlocks",
            "Max number of blocks available: 32, Number of free blocks: " + std::to_string(count));
        return count;
    }

    void list()
    {
        say(5, "logNamesOfUsedBlocks", "Max number of blocks available: 32");
        for (std::size_t block = 0; block < Blocks; ++block) {
            if (!isFree(block)) {
                say(5, "logNamesOfUsedBlocks",
                    "Block[" + std::to_string(block + 1) + "] Name: " + nameOf(block));
            }
        }
    }

    void say(int level, const std::string& function, const std::string& text)
    {
        m_messages.push_back(std::to_string(level) + ' ' + function + "(): " + text);
    }

    /** What a new slot id is: -1 and a mutex for all processes. */
    void initializeSlot(long block)
    {
        pthread_mutexattr_t attributes;
        ::pthread_mutexattr_init(&attributes);
        ::pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
        pthread_mutex_t mutex;
        std::memset(&mutex, 0, sizeof(mutex));
        ::pthread_mutex_init(&mutex, &attributes);
        const std::size_t data = static_cast<std::size_t>(block) * BlockSize + NameSize;
        const std::size_t mutexOffset = alignof(pthread_mutex_t);
        m_area.replace(data, 4, 4, '\xFF');
        m_area.replace(data + mutexOffset, sizeof(mutex), reinterpret_cast<const char*>(&mutex),
                       sizeof(mutex));
    }

private:
    bool isFree(std::size_t block) const { return m_area[block * BlockSize] == '\0'; }

    std::string nameOf(std::size_t block) const
    {
        const std::string field = m_area.substr(block * BlockSize, NameSize);
        return field.substr(0, field.find('\0'));
    }

    bool has(std::size_t block, const std::string& name) const { return nameOf(block) == name; }

    long find(const std::string& name) const
    {
        for (std::size_t block = 0; block < Blocks && !isFree(block); ++block) {
            if (has(block, name)) {
                return static_cast<long>(block);
            }
        }
        return -1;
    }

    std::string m_area;
    Messages m_messages;
};

std::string anyName(FuzzedDataProvider& input)
{
    if (input.ConsumeBool()) {
        return std::string(1, input.PickValueInArray({'a', 'b', 'c', 'd'}));
    }
    return input.ConsumeBool() ? "SLOT" : input.ConsumeRandomLengthString(18);
}

std::string anyArea(FuzzedDataProvider& input)
{
    std::string area(AreaSize, input.ConsumeIntegral<char>());
    if (input.ConsumeBool()) {
        area.assign(AreaSize, '\0');
    }
    for (std::size_t block = 0; block < Blocks && input.remaining_bytes() > 64; ++block) {
        std::string name = input.ConsumeRandomLengthString(NameSize);
        name.resize(NameSize, '\0');
        area.replace(block * BlockSize, NameSize, name);
        area[block * BlockSize + NameSize + block] = input.ConsumeIntegral<char>();
    }
    return area;
}

/** The block whose data the pointer is; -1 for null. */
long blockOf(const void* object)
{
    if (object == nullptr) {
        return -1;
    }
    const long offset = static_cast<const unsigned char*>(object) - mapped - long{NameSize};
    expectEqual("the place in the block", offset % long{BlockSize}, 0);
    return offset / long{BlockSize};
}

void getData(FuzzedDataProvider& input, Model& model, const std::string& name, unsigned int size)
{
    const bool inC = input.ConsumeBool();
    // C texts end with a NUL.
    const std::string asked = inC ? name.c_str() : name;
    void* object = &object;
    void* sync = &sync;
    bool created = true;
    bool done = false;
    if (inC) {
        done = WarmDatabase_getObjectData(asked.c_str(), &object, size, &sync, &created) == 0;
    } else {
        std::mutex* mutex = nullptr;
        done = WarmDatabase::getInstance().getObjectData(asked, &object, size, &mutex, created);
        sync = mutex;
    }
    long block = model.retrieve(asked, size);
    const bool found = block >= 0;
    block = found ? block : model.create(asked, size);
    expectEqual("getObjectData", done ? 1 : 0, block >= 0 ? 1 : 0);
    expectEqual("block", blockOf(object), block);
    expectEqual("created", created ? 1 : 0, !found && block >= 0 ? 1 : 0);
    if (block >= 0) {
        fuzz::expect("the object has a mutex unless its name is empty",
                     (sync != nullptr) == (model.sync(asked) >= 0));
    } else {
        fuzz::expect("a failure leaves C's mutex, and C++ has none",
                     sync == (inC ? static_cast<void*>(&sync) : nullptr));
    }
}

void createOrRetrieve(FuzzedDataProvider& input, Model& model, const std::string& name,
                      unsigned int size)
{
    const bool creates = input.ConsumeBool();
    const bool inC = input.ConsumeBool();
    const std::string asked = inC ? name.c_str() : name;
    WarmDatabase& database = WarmDatabase::getInstance();
    void* object = &object;
    bool done = false;
    if (inC) {
        done = (creates ? WarmDatabase_createObject(asked.c_str(), &object, size)
                        : WarmDatabase_retrieveObject(asked.c_str(), &object, size)) == 0;
    } else {
        const bool lock = input.ConsumeBool();
        done = creates ? database.createObject(asked, &object, size, lock)
                       : database.retrieveObject(asked, &object, size, lock);
    }
    const long block = creates ? model.create(asked, size) : model.retrieve(asked, size);
    expectEqual("create or retrieve", done ? 1 : 0, block >= 0 ? 1 : 0);
    expectEqual("block", blockOf(object), block);
}

void makeSlot(Model& model)
{
    constexpr unsigned int SlotSize = alignof(pthread_mutex_t) + sizeof(pthread_mutex_t);
    const os::bsp::WarmSlot slot;
    long block = model.retrieve("SLOT", SlotSize);
    const bool found = block >= 0;
    block = found ? block : model.create("SLOT", SlotSize);
    if (block >= 0) {
        model.sync("SLOT");
    }
    if (block < 0) {
        model.say(1, "WarmSlot", "Error: Could not get the SLOT object from the warm database");
        expectEqual("an invalid slot's id", slot.get(), -1);
        return;
    }
    model.say(5, "WarmSlot", "The SLOT object was successfully retrieved from the warm database");
    if (found) {
        std::int32_t id = 0;
        std::memcpy(&id,
                    model.area().data() + static_cast<std::size_t>(block) * BlockSize + NameSize,
                    sizeof(id));
        model.say(5, "WarmSlot", "The slotId from WARM reset is: " + std::to_string(id));
        return;
    }
    model.say(5, "WarmSlot", "The SLOT object was created, initializing the object contents");
    model.initializeSlot(block);
}

void step(FuzzedDataProvider& input, Model& model)
{
    WarmDatabase& database = WarmDatabase::getInstance();
    const std::string name = anyName(input);
    const auto size = input.ConsumeBool() ? input.ConsumeIntegralInRange<unsigned int>(1006, 1010)
                                          : input.ConsumeIntegral<unsigned int>() % 1008;
    switch (input.ConsumeIntegralInRange<int>(0, 6)) {
    case 0:
        expectEqual("free blocks", database.getNumberOfFreeBlocks(), model.freeBlocks());
        break;
    case 1:
        database.logNamesOfUsedBlocks();
        model.list();
        break;
    case 2:
        fuzz::expect("there is a mutex exactly for an object",
                     (database.getObjectSyncPointer(name) != nullptr) == (model.sync(name) >= 0));
        break;
    case 3:
        makeSlot(model);
        break;
    case 4:
        createOrRetrieve(input, model, name, size);
        break;
    default:
        getData(input, model, name, size);
        break;
    }
    expectEqual("the trace", fuzz::joined(fuzz::takeMessages()), fuzz::joined(model.messages()));
    model.messages().clear();
    if (std::memcmp(mapped, model.area().data(), AreaSize) != 0) {
        expectEqual("the area", std::string(reinterpret_cast<const char*>(mapped), AreaSize),
                    model.area());
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    WarmDatabase::getInstance();
    fuzz::expect("the area is mapped", mapped != nullptr);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    Model model(anyArea(input));
    std::memcpy(mapped, model.area().data(), AreaSize);
    fuzz::takeMessages();
    for (int steps = 0; steps < 8 && input.remaining_bytes() > 0; ++steps) {
        step(input, model);
    }
    // Whoever left the lock taken would stop here.
    WarmDatabase::getInstance().lock();
    WarmDatabase::getInstance().unlock();
    return 0;
}
