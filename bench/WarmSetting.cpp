#include "WarmSetting.h"

#include "Bsp.h"
#include "Files.h"
#include "SharedMutex.h"
#include "WarmDatabase.h"

#include <cstdlib>
#include <stdexcept>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace
{

constexpr std::size_t SlotBlock = 30;
constexpr int SlotId = 5;

Shared& mapShared()
{
    void* memory =
        ::mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        throw std::runtime_error("no shared memory");
    }
    return *static_cast<Shared*>(memory);
}

sem_t* makeSemaphore()
{
    sem_t* semaphore = ::sem_open("/BspBenchLimit", O_CREAT | O_EXCL, 0600, 1U);
    if (semaphore == SEM_FAILED) {
        throw std::runtime_error("no semaphore for the limit");
    }
    ::sem_unlink("/BspBenchLimit");
    return semaphore;
}

void setVariable(const char* name, const std::string& value)
{
    ::setenv(name, value.c_str(), 1); // NOLINT(concurrency-mt-unsafe): there is one thread yet
}

} // namespace

WarmSetting& WarmSetting::get()
{
    static WarmSetting instance;
    return instance;
}

WarmSetting::WarmSetting() : m_shared(mapShared()), m_semaphore(makeSemaphore())
{
    os::bsp::initSharedMutex(&m_shared.mutex);
    makeBoard();
    fillStore();
}

void WarmSetting::makeBoard()
{
    if (::access("/dev/shm/sem.DtcmDbSharedSem", F_OK) == 0) {
        throw std::runtime_error("the store is in use: give the benchmark its own /dev/shm");
    }
    m_board.emplace();
    // The code is no variant's, and its platform is Nxu4; the register says cold.
    testsupport::writeFile(m_board->file("eeprom"),
                           std::string("\xFE\0\xFE\xFE\xFE\xFE\xFE\xFE", 8));
    testsupport::writeFile(m_board->file("top.dtcm0"),
                           std::string(NumberOfBlocks * BlockSize, '\0'));
    testsupport::writeFile(m_board->file("top.sys_ctrl0"), std::string(4096, '\0'));
    setVariable("BSP_BOARD_DIR", m_board->path());
    setVariable("QELTRACE_OUTPUT", "none");
}

void WarmSetting::fillStore()
{
    for (std::size_t block = 0; block < NumberOfBlocks; ++block) {
        if (block == SlotBlock) {
            Bsp_setSlotId(SlotId);
            m_names.emplace_back("SLOT");
        } else {
            void* object = nullptr;
            m_names.push_back("object" + std::to_string(block + 1));
            WarmDatabase_createObject(m_names.back().c_str(), &object, ObjectSize);
        }
        m_names.back().copy(&m_shared.names[block * BlockSize], BlockSize - 1);
    }
    const auto& database = os::bsp::dtcm::WarmDatabase::getInstance();
    if (database.getNumberOfFreeBlocks() != 0 || Bsp_getSlotId() != SlotId) {
        throw std::runtime_error("the store is not as expected");
    }
}
