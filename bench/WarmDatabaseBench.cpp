/**
 * @file
 * @brief Warm objects and the slot id against what they cannot do without.
 *
 *     GetObjectData/N/P       finds the last of N objects; limit: one wait/post pair of a named
 *                             semaphore around a strcmp scan of N names 1024 bytes apart
 *     GetObjectDataFromC/N/P  the same through the C interface, against the same limit
 *     GetObjectDataTogether/P the last of 8 objects in P processes, all of them measured; limit:
 *                             the same scan in as many
 *     GetSlotId/P             Bsp_getSlotId; limit: lock, read and unlock of a process-shared mutex
 *
 * P processes do the same all the time; but for ...Together one of them is measured. Batches of the
 * operation and of its limit take turns, so that a busy machine slows both down; "ratio" is that of
 * their medians.
 *
 * It uses the names that all processes of a board share, so it wants a /dev/shm of its own:
 *
 *     bwrap --dev-bind / / --tmpfs /dev/shm build/release/bench/warm_database_bench
 */
#include "Bsp.h"
#include "Comparison.h"
#include "WarmDatabase.h"
#include "WarmSetting.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <pthread.h>
#include <semaphore.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using os::bsp::dtcm::WarmDatabase;

constexpr int OperationsPerBatch = 5000;

/** Finds an object by the class. */
class Find
{
public:
    explicit Find(std::size_t objects)
        : m_database(WarmDatabase::getInstance()), m_name(WarmSetting::get().name(objects - 1))
    {}

    void operator()() const
    {
        void* object = nullptr;
        std::mutex* sync = nullptr;
        bool created = true;
        benchmark::DoNotOptimize(
            m_database.getObjectData(m_name, &object, ObjectSize, &sync, created));
        benchmark::DoNotOptimize(object);
    }

private:
    WarmDatabase& m_database;
    const std::string& m_name;
};

/** Finds an object by the C function. */
class FindFromC
{
public:
    explicit FindFromC(std::size_t objects) : m_name(WarmSetting::get().name(objects - 1).c_str())
    {}

    void operator()() const
    {
        void* object = nullptr;
        void* sync = nullptr;
        bool created = true;
        benchmark::DoNotOptimize(
            WarmDatabase_getObjectData(m_name, &object, ObjectSize, &sync, &created));
        benchmark::DoNotOptimize(object);
    }

private:
    const char* m_name;
};

/** Finds a name among that many under a semaphore, and does nothing else. */
class Scan
{
public:
    explicit Scan(std::size_t objects)
        : m_semaphore(WarmSetting::get().semaphore()),
          m_names(WarmSetting::get().shared().names.data()), m_end(m_names + objects * BlockSize),
          m_name(WarmSetting::get().name(objects - 1).c_str())
    {}

    void operator()() const
    {
        ::sem_wait(m_semaphore);
        const char* found = m_names;
        while (found != m_end && std::strcmp(found, m_name) != 0) {
            found += BlockSize;
        }
        benchmark::DoNotOptimize(found);
        ::sem_post(m_semaphore);
    }

private:
    sem_t* m_semaphore;
    const char* m_names;
    const char* m_end;
    const char* m_name;
};

void getSlotId()
{
    benchmark::DoNotOptimize(Bsp_getSlotId());
}

/** Reads a number under a mutex of all processes. */
class ReadUnderMutex
{
public:
    void operator()() const
    {
        ::pthread_mutex_lock(&m_shared.mutex);
        benchmark::DoNotOptimize(m_shared.value);
        ::pthread_mutex_unlock(&m_shared.mutex);
    }

private:
    Shared& m_shared = WarmSetting::get().shared();
};

/** Other processes that do the same; they end with the object. */
class Others
{
public:
    template <typename Operation, typename Limit>
    Others(std::size_t number, Operation operation, Limit limit)
    {
        Shared& shared = WarmSetting::get().shared();
        shared.turn = Shared::Wait;
        shared.done[Shared::Operation] = 0;
        shared.done[Shared::Limit] = 0;
        for (std::size_t i = 0; i < number; ++i) {
            const pid_t process = ::fork();
            if (process == 0) {
                ::prctl(PR_SET_PDEATHSIG, SIGKILL);
                run(operation, limit);
                // The shared names belong to the parent, which takes them away when it exits.
                ::_exit(0);
            }
            m_processes.push_back(process);
        }
    }

    ~Others() { end(); }

    void end()
    {
        WarmSetting::get().shared().turn = Shared::End;
        for (const pid_t process : m_processes) {
            ::waitpid(process, nullptr, 0);
        }
        m_processes.clear();
    }

    Others(const Others&) = delete;
    Others& operator=(const Others&) = delete;

private:
    template <typename Operation, typename Limit> static void run(Operation operation, Limit limit)
    {
        const std::atomic<int>& turn = WarmSetting::get().shared().turn;
        while (turn != Shared::End) {
            if (turn == Shared::Wait) {
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
            repeatDuring(Shared::Operation, operation);
            repeatDuring(Shared::Limit, limit);
        }
    }

    template <typename Operation> static void repeatDuring(Shared::Turn turn, Operation operation)
    {
        Shared& shared = WarmSetting::get().shared();
        long done = 0;
        for (; shared.turn == turn; ++done) {
            operation();
        }
        shared.done[turn] += done;
    }

    std::vector<pid_t> m_processes;
};

/** Nanoseconds of one operation, over a batch of them. */
template <typename Operation> double timeBatch(Shared::Turn turn, Operation operation)
{
    WarmSetting::get().shared().turn = turn;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < OperationsPerBatch; ++i) {
        operation();
    }
    const std::chrono::duration<double, std::nano> elapsed =
        std::chrono::steady_clock::now() - start;
    return elapsed.count() / OperationsPerBatch;
}

template <typename Operation, typename Limit>
void compare(benchmark::State& state, std::size_t processes, Operation operation, Limit limit)
{
    std::vector<double> times;
    std::vector<double> limits;
    const Others others(processes - 1, operation, limit);
    for ([[maybe_unused]] auto iteration : state) {
        times.push_back(timeBatch(Shared::Operation, operation));
        limits.push_back(timeBatch(Shared::Limit, limit));
        state.SetIterationTime(times.back() * 1e-9);
    }
    state.counters["ns"] = median(times);
    state.counters["limit_ns"] = median(limits);
    state.counters["ratio"] = median(times) / median(limits);
}

/** Nanoseconds of one operation, of all that the processes make together. */
template <typename Operation, typename Limit>
void compareTogether(benchmark::State& state, std::size_t processes, Operation operation,
                     Limit limit)
{
    constexpr std::chrono::milliseconds Turn(50);
    Shared& shared = WarmSetting::get().shared();
    std::array<double, Shared::End> seconds{};
    Others others(processes, operation, limit);
    for ([[maybe_unused]] auto iteration : state) {
        for (const auto turn : {Shared::Operation, Shared::Limit}) {
            seconds[turn] += secondsOf([&] {
                shared.turn = turn;
                std::this_thread::sleep_for(Turn);
            });
        }
        state.SetIterationTime(std::chrono::duration<double>(Turn).count());
    }
    others.end();
    const auto nanosecondsOf = [&](Shared::Turn turn) {
        return seconds[turn] * 1e9 / static_cast<double>(shared.done[turn]);
    };
    state.counters["ns"] = nanosecondsOf(Shared::Operation);
    state.counters["limit_ns"] = nanosecondsOf(Shared::Limit);
    state.counters["ratio"] = nanosecondsOf(Shared::Operation) / nanosecondsOf(Shared::Limit);
}

void findObjectTogether(benchmark::State& state)
{
    constexpr std::size_t Objects = 8;
    WarmSetting::get(); // before the store is used
    compareTogether(state, static_cast<std::size_t>(state.range(0)), Find(Objects), Scan(Objects));
}

template <typename Operation> void findObject(benchmark::State& state)
{
    WarmSetting::get(); // before the store is used
    const auto objects = static_cast<std::size_t>(state.range(0));
    compare(state, static_cast<std::size_t>(state.range(1)), Operation(objects), Scan(objects));
}

void slotId(benchmark::State& state)
{
    WarmSetting::get(); // before the store is used
    compare(state, static_cast<std::size_t>(state.range(0)), getSlotId, ReadUnderMutex());
}

constexpr int Batches = 400;

BENCHMARK(findObject<Find>)
    ->Name("GetObjectData")
    ->ArgNames({"objects", "processes"})
    ->ArgsProduct({{1, 8, 32}, {1, 2, 4}})
    ->Iterations(Batches)
    ->UseManualTime();
BENCHMARK(findObject<Find>)
    ->Name("GetObjectData")
    ->ArgNames({"objects", "processes"})
    ->ArgsProduct({{2, 4, 16}, {1}})
    ->Iterations(Batches)
    ->UseManualTime();
BENCHMARK(findObjectTogether)
    ->Name("GetObjectDataTogether")
    ->ArgName("processes")
    ->RangeMultiplier(2)
    ->Range(1, 64)
    ->Iterations(20)
    ->UseManualTime();
BENCHMARK(findObject<FindFromC>)
    ->Name("GetObjectDataFromC")
    ->ArgNames({"objects", "processes"})
    ->ArgsProduct({{1, 8, 32}, {1, 2, 4}})
    ->Iterations(Batches)
    ->UseManualTime();
BENCHMARK(slotId)
    ->Name("GetSlotId")
    ->ArgName("processes")
    ->Arg(1)
    ->Arg(2)
    ->Arg(4)
    ->Iterations(Batches)
    ->UseManualTime();

} // namespace
