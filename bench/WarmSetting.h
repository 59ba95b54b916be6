/**
 * @file
 * @brief What the benchmarks of the warm database measure on.
 */
#ifndef BENCH_WARMSETTING_H
#define BENCH_WARMSETTING_H

#include "Files.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <pthread.h>
#include <semaphore.h>

constexpr std::size_t NumberOfBlocks = 32;
constexpr std::size_t BlockSize = 1024;
constexpr unsigned int ObjectSize = 100;

/** What the processes of one measurement share besides the store. */
struct Shared
{
    enum Turn
    {
        Operation,
        Limit,
        End,
        Wait
    };

    std::atomic<int> turn;
    std::array<std::atomic<long>, End> done; /**< In the turns of each kind, by the others. */
    pthread_mutex_t mutex;
    int value;
    std::array<char, NumberOfBlocks * BlockSize> names;
};

/** A board in a directory, its full store, and the same names and locks for the limits. */
class WarmSetting
{
public:
    /** Made at the first call; throws where a store is in use already. */
    static WarmSetting& get();

    /** Name of an object, which is the last of that many and one. */
    const std::string& name(std::size_t block) const { return m_names[block]; }
    Shared& shared() const { return m_shared; }
    sem_t* semaphore() const { return m_semaphore; }

private:
    WarmSetting();
    void makeBoard();
    void fillStore();

    std::optional<testsupport::TemporaryDirectory> m_board;
    Shared& m_shared;
    std::vector<std::string> m_names;
    sem_t* m_semaphore;
};

#endif
