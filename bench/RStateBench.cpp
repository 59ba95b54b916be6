/**
 * @file
 * @brief R-states: compare two texts, step one and write it back.
 *
 *     RState_compareAndIncrement   the library: ratios to the other two, heap allocations per step
 *     Charconv_compareAndIncrement the same with std::from_chars, tables and std::to_chars
 *     Scanf_compareAndIncrement    the same with sscanf and snprintf
 *
 * The ratios compare batches that take turns, so that a busy machine slows all of them down.
 */
#include "Allocations.h"
#include "Comparison.h"
#include "RState.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <vector>

namespace
{

using Text = std::array<char, RState::MaxRStateLen>;

/** Labels as they occur, of each length. */
struct Labels
{
    std::array<Text, 8> older{"R1A",  "R9AC",  "R7F01",  "R12BC05",
                              "R1AG", "R3ABB", "R2ZZZZ", "R5D98"};
    std::array<Text, 8> newer{"R1B", "R9AD", "R7F02", "R12BC06", "R1AH", "R3ABC", "R3A", "R5D99"};
};

struct Version
{
    int major;
    int minor;
    int verification;
};

constexpr std::array<std::string_view, 4> Alphabets{"ABCDEFGHJKLMNSTUVXYZ", "BCDFGHJKLMNSTVXZ",
                                                    "BCDFGHJKLMNSTVXZ", "ABCDEFGHJKLMNSTUVXYZ"};
constexpr std::array<int, 4> Sizes{20, 16, 16, 20};
constexpr std::array<int, 5> FirstMinors{0, 20, 340, 5460, 107860};

constexpr std::array<int, 26> makeIndexes(std::string_view alphabet)
{
    std::array<int, 26> indexes{};
    std::size_t index = 0;
    for (std::size_t letter = 0; letter < indexes.size(); ++letter) {
        if (alphabet[index] < static_cast<char>('A' + letter)) {
            ++index;
        }
        indexes[letter] = static_cast<int>(index);
    }
    return indexes;
}

constexpr std::array<std::array<int, 26>, 4> Indexes{
    makeIndexes(Alphabets[0]), makeIndexes(Alphabets[1]), makeIndexes(Alphabets[2]),
    makeIndexes(Alphabets[3])};

/** Reads letters from the text's start; returns how many there are, four at most. */
std::size_t readLetters(const char* text, int& minor)
{
    int number = 0;
    std::size_t count = 0;
    while (count < 4 && text[count] >= 'A' && text[count] <= 'Z') {
        number =
            number * Sizes[count] + Indexes[count][static_cast<std::size_t>(text[count] - 'A')];
        ++count;
    }
    minor = count == 0 ? 0 : FirstMinors[count - 1] + number;
    return count;
}

std::size_t writeLetters(char* text, int minor)
{
    std::size_t count = 1;
    while (count < 4 && minor >= FirstMinors[count]) {
        ++count;
    }
    int number = minor - FirstMinors[count - 1];
    for (std::size_t i = count; i-- > 0;) {
        text[i] = Alphabets[i][static_cast<std::size_t>(number % Sizes[i])];
        number /= Sizes[i];
    }
    return count;
}

int compare(const Version& a, const Version& b)
{
    if (a.major != b.major) {
        return a.major < b.major ? -1 : 1;
    }
    if (a.minor != b.minor) {
        return a.minor < b.minor ? -1 : 1;
    }
    if (a.verification == 0 || b.verification == 0 || a.verification == b.verification) {
        return 0;
    }
    return a.verification < b.verification ? -1 : 1;
}

void step(Version& version)
{
    ++(version.verification >= 1 ? version.verification : version.minor);
    if (version.verification >= 1000) {
        ++version.minor;
        version.verification = 1;
    }
    if (version.minor >= FirstMinors[4]) {
        ++version.major;
        version.minor = 0;
    }
}

/** An R-state read and written with std::from_chars and std::to_chars. */
struct Charconv
{
    static Version read(const Text& text)
    {
        Version version{};
        const char* const end = text.data() + text.size();
        if (text[0] != 'R') {
            return version;
        }
        const char* next = std::from_chars(text.data() + 1, end, version.major).ptr;
        next += readLetters(next, version.minor);
        std::from_chars(next, end, version.verification);
        return version;
    }

    static void write(Text& text, const Version& version)
    {
        std::array<char, 32> buffer{'R'};
        char* const end = buffer.data() + buffer.size() - 1;
        char* next = std::to_chars(buffer.data() + 1, end, version.major).ptr;
        next += writeLetters(next, version.minor);
        if (version.verification > 0) {
            if (version.verification < 10) {
                *next++ = '0';
            }
            next = std::to_chars(next, end, version.verification).ptr;
        }
        *next++ = '\0';
        const auto size = static_cast<std::size_t>(next - buffer.data());
        if (size <= text.size()) {
            std::memcpy(text.data(), buffer.data(), size);
        }
    }
};

/** An R-state read and written with sscanf and snprintf. */
struct Scanf
{
    static Version read(const Text& text)
    {
        Version version{};
        std::array<char, 5> letters{};
        std::sscanf(text.data(), "R%d%4[A-Z]%d", &version.major, letters.data(),
                    &version.verification);
        readLetters(letters.data(), version.minor);
        return version;
    }

    static void write(Text& text, const Version& version)
    {
        std::array<char, 5> letters{};
        writeLetters(letters.data(), version.minor);
        std::array<char, 32> buffer{};
        const int length = version.verification > 0
                               ? std::snprintf(buffer.data(), buffer.size(), "R%d%s%02d",
                                               version.major, letters.data(), version.verification)
                               : std::snprintf(buffer.data(), buffer.size(), "R%d%s", version.major,
                                               letters.data());
        if (length >= 0 && static_cast<std::size_t>(length) < text.size()) {
            std::memcpy(text.data(), buffer.data(), static_cast<std::size_t>(length) + 1);
        }
    }
};

template <typename Format> int compareAndIncrement(Text& older, const Text& newer)
{
    const int result = compare(Format::read(older), Format::read(newer));
    Version version = Format::read(older);
    step(version);
    Format::write(older, version);
    return result;
}

int libraryCompareAndIncrement(Text& older, const Text& newer)
{
    const int result = RState_compare(older.data(), newer.data());
    RState_increment(older.data(), static_cast<unsigned int>(older.size()), IncrementType::Auto);
    return result;
}

using Operation = int (*)(Text& older, const Text& newer);

void runRound(Operation operation, Labels& labels)
{
    for (std::size_t i = 0; i < labels.older.size(); ++i) {
        benchmark::DoNotOptimize(operation(labels.older[i], labels.newer[i]));
    }
}

/** Nanoseconds of one operation, over a batch of them. */
double timeBatch(Operation operation)
{
    constexpr int Rounds = 250;
    Labels labels;
    const auto start = std::chrono::steady_clock::now();
    for (int round = 0; round < Rounds; ++round) {
        runRound(operation, labels);
    }
    const std::chrono::duration<double, std::nano> elapsed =
        std::chrono::steady_clock::now() - start;
    return elapsed.count() / static_cast<double>(Rounds * labels.older.size());
}

/** Whether all three do the same to the same labels, so that their times may be compared. */
bool doTheSame()
{
    std::array<Labels, 3> labels;
    for (int round = 0; round < 3000; ++round) {
        for (std::size_t i = 0; i < labels[0].older.size(); ++i) {
            const int result = libraryCompareAndIncrement(labels[0].older[i], labels[0].newer[i]);
            if (compareAndIncrement<Charconv>(labels[1].older[i], labels[1].newer[i]) != result ||
                compareAndIncrement<Scanf>(labels[2].older[i], labels[2].newer[i]) != result ||
                std::strcmp(labels[0].older[i].data(), labels[1].older[i].data()) != 0 ||
                std::strcmp(labels[0].older[i].data(), labels[2].older[i].data()) != 0)
            {
                return false;
            }
        }
    }
    return true;
}

void measure(benchmark::State& state, Operation operation)
{
    Labels labels;
    std::size_t i = 0;
    for ([[maybe_unused]] auto iteration : state) {
        benchmark::DoNotOptimize(operation(labels.older[i], labels.newer[i]));
        i = (i + 1) % labels.older.size();
    }
}

void RState_compareAndIncrement(benchmark::State& state)
{
    if (!doTheSame()) {
        state.SkipWithError("the three ways differ in their results");
        return;
    }
    std::array<std::vector<double>, 3> times;
    for (int batch = 0; batch < 101; ++batch) {
        times[0].push_back(timeBatch(libraryCompareAndIncrement));
        times[1].push_back(timeBatch(compareAndIncrement<Charconv>));
        times[2].push_back(timeBatch(compareAndIncrement<Scanf>));
    }
    const long before = testsupport::countedAllocations();
    measure(state, libraryCompareAndIncrement);
    state.counters["allocations"] =
        benchmark::Counter(static_cast<double>(testsupport::countedAllocations() - before),
                           benchmark::Counter::kAvgIterations);
    state.counters["to_charconv"] = median(times[0]) / median(times[1]);
    state.counters["to_scanf"] = median(times[0]) / median(times[2]);
}
BENCHMARK(RState_compareAndIncrement);

void Charconv_compareAndIncrement(benchmark::State& state)
{
    measure(state, compareAndIncrement<Charconv>);
}
BENCHMARK(Charconv_compareAndIncrement);

void Scanf_compareAndIncrement(benchmark::State& state)
{
    measure(state, compareAndIncrement<Scanf>);
}
BENCHMARK(Scanf_compareAndIncrement);

} // namespace
