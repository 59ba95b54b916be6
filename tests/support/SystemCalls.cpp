#include "SystemCalls.h"

#include <deque>
#include <map>
#include <mutex>
#include <utility>

// Without WRAP the real functions are not there.
#define TESTS_FUNCTIONS(name, symbol, Result, parameters, arguments)                               \
    Result real_##name parameters __asm__("__real_" #symbol) __attribute__((weak));                \
    Result wrap_##name parameters __asm__("__wrap_" #symbol);                                      \
    Result wrap_##name parameters                                                                  \
    {                                                                                              \
        const auto& hook = systemcalls::hooks().name;                                              \
        return hook ? hook arguments : real_##name arguments;                                      \
    }

TESTS_SYSTEM_CALLS(TESTS_FUNCTIONS)

namespace systemcalls
{

namespace
{

struct Recorder
{
    std::recursive_mutex mutex;
    std::map<std::string, std::deque<Step>> steps;
    std::vector<std::string> lines;
    bool echoes = false;
};

/** Never destroyed, as the hooks: the last calls are made at exit. */
Recorder& recorder()
{
    static Recorder& instance = *new Recorder;
    return instance;
}

using Guard = std::lock_guard<std::recursive_mutex>;

} // namespace

Hooks& hooks()
{
    static Hooks& instance = *new Hooks;
    return instance;
}

const Hooks& real()
{
#define TESTS_REAL(name, symbol, Result, parameters, arguments) real_##name,
    static const Hooks& instance = *new Hooks{TESTS_SYSTEM_CALLS(TESTS_REAL)};
    return instance;
}

void queue(const std::string& function, const std::vector<Step>& steps)
{
    const Guard guard(recorder().mutex);
    std::deque<Step>& queued = recorder().steps[function];
    queued.insert(queued.end(), steps.begin(), steps.end());
}

std::vector<std::string> left()
{
    const Guard guard(recorder().mutex);
    std::vector<std::string> functions;
    for (const auto& [function, steps] : std::exchange(recorder().steps, {})) {
        functions.insert(functions.end(), steps.size(), function);
    }
    return functions;
}

std::optional<Step> next(const std::string& function, const std::string& arguments)
{
    const int before = errno;
    const Guard guard(recorder().mutex);
    note(arguments.empty() ? function : function + ' ' + arguments);
    std::deque<Step>& queued = recorder().steps[function];
    errno = before;
    if (queued.empty()) {
        return std::nullopt;
    }
    const Step step = queued.front();
    queued.pop_front();
    if (step.error == Done.error) {
        return std::nullopt;
    }
    errno = step.result == -1 ? step.error : errno;
    return step;
}

void note(const std::string& line)
{
    const Guard guard(recorder().mutex);
    recorder().lines.push_back(line);
    if (recorder().echoes) {
        std::fprintf(stderr, "%s\n", line.c_str());
    }
}

std::vector<std::string> take()
{
    const Guard guard(recorder().mutex);
    return std::exchange(recorder().lines, {});
}

void echo()
{
    recorder().echoes = true;
}

} // namespace systemcalls
