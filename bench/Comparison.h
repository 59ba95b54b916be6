/**
 * @file
 * @brief How an operation and what it cannot do without are compared in one run.
 */
#ifndef BENCH_COMPARISON_H
#define BENCH_COMPARISON_H

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <limits>
#include <vector>

inline double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

template <typename Work> double secondsOf(Work work)
{
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

/**
 * Does both in turns. "ratio" is the one's shortest time by the other's: whatever else the machine
 * does only adds.
 *
 * @param isRight  whether the call's answer is the expected one
 */
template <typename Call, typename Limit, typename IsRight>
void compareInTurns(benchmark::State& state, Call call, Limit limit, IsRight isRight)
{
    double shortestCall = std::numeric_limits<double>::max();
    double shortestLimit = shortestCall;
    while (state.KeepRunning()) {
        shortestLimit = std::min(shortestLimit, secondsOf(limit));
        const double time = secondsOf(call);
        shortestCall = std::min(shortestCall, time);
        if (!isRight()) {
            state.SkipWithError("wrong answer");
            break;
        }
        state.SetIterationTime(time);
    }
    state.counters["limit_ms"] = shortestLimit * 1e3;
    state.counters["call_ms"] = shortestCall * 1e3;
    state.counters["ratio"] = shortestCall / shortestLimit;
}

#endif
