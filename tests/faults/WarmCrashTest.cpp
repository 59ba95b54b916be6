/**
 * @file
 * @brief Whoever uses the store is killed behind every instruction after which the warm area, the
 * semaphore or the mutexes had changed; others go on from what is left.
 *
 * What they have to find is worked out from the bytes that are left, by a model of its own.
 */
#include "Bsp.h"
#include "FakeBoard.h"
#include "FakeDevices.h"
#include "Files.h"
#include "RecordingTrace.h"
#include "SharedState.h"
#include "SteppedProcess.h"
#include "WaitingProcess.h"
#include "WarmDatabase.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

namespace
{

using faults::SharedState;
using os::bsp::dtcm::WarmDatabase;

enum ResetCause : std::uint32_t
{
    Cold,
    Warm,
    Watchdog,
    Unknown
};

constexpr std::size_t AreaSize = 32768;
constexpr std::size_t BlockSize = 1024;
constexpr std::size_t NameSize = 16;
constexpr unsigned int ObjectSize = 8;
const std::string OldData = "old data";

const std::string& areaFile()
{
    return fakedevices::dtcm().path;
}

/** An object OLD, and a free block behind it with something left in it. */
std::string firstArea()
{
    std::string area(AreaSize, '\0');
    area.replace(0, 3, "OLD");
    area.replace(NameSize, OldData.size(), OldData);
    area.replace(BlockSize + NameSize, 12, "some remains");
    area.replace(BlockSize + 1000, 4, "more");
    return area;
}

/** A NUL ends a text. */
std::string printable(std::string bytes)
{
    std::replace(bytes.begin(), bytes.end(), '\0', '.');
    return bytes;
}

// What processes do.

void* find(const char* name, bool& isCreated)
{
    void* object = nullptr;
    std::mutex* sync = nullptr;
    WarmDatabase::getInstance().getObjectData(name, &object, ObjectSize, &sync, isCreated);
    return object;
}

void open()
{
    WarmDatabase::getInstance();
}

void createNew()
{
    void* object = nullptr;
    WarmDatabase::getInstance().createObject("NEW", &object, ObjectSize, true);
}

void createOld()
{
    void* object = nullptr;
    WarmDatabase::getInstance().createObject("OLD", &object, ObjectSize, true);
}

void retrieveOld()
{
    void* object = nullptr;
    WarmDatabase::getInstance().retrieveObject("OLD", &object, ObjectSize, true);
}

void getNew()
{
    bool isCreated = false;
    find("NEW", isCreated);
}

void getOld()
{
    bool isCreated = false;
    find("OLD", isCreated);
}

void setSlot5()
{
    Bsp_setSlotId(5);
}

void setSlot6()
{
    Bsp_setSlotId(6);
}

void getSlot()
{
    Bsp_getSlotId();
}

[[noreturn]] void end()
{
    std::exit(0); // NOLINT(concurrency-mt-unsafe): a process of one thread
}

/** Text in memory that all processes see. */
class SharedText
{
public:
    SharedText()
        : m_text(static_cast<char*>(
              ::mmap(nullptr, Size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)))
    {}
    ~SharedText() { ::munmap(m_text, Size); }
    SharedText(const SharedText&) = delete;
    SharedText& operator=(const SharedText&) = delete;

    void clear() { m_text[0] = '\0'; }
    void add(const std::string& words) { std::strcat(m_text, words.c_str()); }
    std::string get() const { return m_text; }

private:
    static constexpr std::size_t Size = 4096;
    char* const m_text;
};

/** Asks the store everything. What waits for ever comes to no end. */
void askAll(SharedText& answers)
{
    bool isCreated = false;
    const void* old = find("OLD", isCreated);
    answers.add(isCreated ? "OLD is new"
                          : "OLD is " + printable({static_cast<const char*>(old), ObjectSize}));
    find("NEW", isCreated);
    answers.add(isCreated ? ", NEW is new" : ", NEW is there");
    answers.add(", slot " + std::to_string(Bsp_getSlotId()));
    answers.add(", " + std::to_string(WarmDatabase::getInstance().getNumberOfFreeBlocks()) +
                " free");
}

// The model: what the answers have to be, from the bytes that are left.

class Model
{
public:
    /** A process starts there after a restart of that kind. */
    static std::string answersOfNewcomer(SharedState state, ResetCause cause)
    {
        if (!state.semaphore && cause == Cold) {
            state.area.assign(AreaSize, '\0');
        }
        return answers(state);
    }

    /** A process is there already. */
    static std::string answers(const SharedState& state)
    {
        const bool isTaken = state.semaphore && state.semaphore->at(0) == '\0';
        return isTaken ? "waits" : Model(state.area).m_answers;
    }

private:
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

// The board and its processes.

void restart()
{
    std::filesystem::remove(faults::SemaphoreFile);
    std::filesystem::remove(faults::MutexesFile);
}

void useResetCause(ResetCause cause)
{
    fakedevices::control().word = cause;
}

/** A forked process that asks all; its answers. */
std::string answersOfNewcomer(ResetCause cause, SharedText& answers)
{
    answers.clear();
    const pid_t process = ::fork();
    if (process == 0) {
        useResetCause(cause);
        askAll(answers);
        ::_exit(0);
    }
    const int status = testsupport::endOf(process);
    return answers.get() + (status == testsupport::WaitsForEver ? "waits"
                            : status == 0                       ? ""
                                                                : std::to_string(status));
}

/** A process that has made the store, and does what it is told. */
class Creator
{
public:
    explicit Creator(SharedText& answers) : m_answers(answers)
    {
        std::array<int, 2> orders{};
        std::array<int, 2> done{};
        if (::pipe(orders.data()) != 0 || ::pipe(done.data()) != 0) {
            throw std::runtime_error("pipe");
        }
        m_process = ::fork();
        if (m_process == 0) {
            ::close(orders[1]);
            obey(orders[0], done[1]);
        }
        ::close(orders[0]);
        ::close(done[1]);
        m_orders = orders[1];
        m_done = done[0];
        waitForOrder();
    }
    ~Creator()
    {
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
        ::close(m_orders);
        ::close(m_done);
    }
    Creator(const Creator&) = delete;
    Creator& operator=(const Creator&) = delete;

    std::string answers()
    {
        m_answers.clear();
        give('a');
        const int status = testsupport::endOf(m_process);
        return m_answers.get() + (status == testsupport::WaitsForEver ? "waits" : "");
    }

    /** Lets it return from main. */
    void exit()
    {
        give('e');
        EXPECT_EQ(testsupport::endOf(m_process), 0);
    }

private:
    [[noreturn]] void obey(int orders, int done)
    {
        WarmDatabase::getInstance();
        [[maybe_unused]] ssize_t size = ::write(done, "", 1);
        char order = 0;
        size = ::read(orders, &order, 1);
        if (order == 'e') {
            end();
        }
        askAll(m_answers);
        ::_exit(0);
    }

    void give(char order) const { EXPECT_EQ(::write(m_orders, &order, 1), 1); }

    void waitForOrder() const
    {
        char byte = 0;
        EXPECT_EQ(::read(m_done, &byte, 1), 1);
    }

    SharedText& m_answers;
    pid_t m_process = -1;
    int m_orders = -1;
    int m_done = -1;
};

/** A moment at which what is shared had just changed. */
struct Moment
{
    int systemCalls; /**< Made until then. */
    int changes;     /**< Since the last of them. */
    SharedState state;
};

/** The state but for the number of the thread that holds the slot id's mutex. */
SharedState withoutOwner(SharedState state)
{
    for (std::size_t block = 0; block < AreaSize; block += BlockSize) {
        if (state.area.compare(block, 5, "SLOT", 5) == 0) {
            state.area.replace(block + NameSize + 8 + 8, 4, "....");
        }
    }
    return state;
}

/** What a process does that is killed, and what is there before. */
struct Scenario
{
    const char* name;
    void (*before)();
    void (*work)();
    bool hasCreator;  /**< Another process has made the store. */
    ResetCause cause; /**< Of the restart before. */
    bool keepsOld;    /**< OLD is not touched. */
};

std::ostream& operator<<(std::ostream& stream, const Scenario& scenario)
{
    return stream << scenario.name;
}

class WarmCrash : public testing::TestWithParam<Scenario>
{
protected:
    WarmCrash()
    {
        if (std::getenv("BSP_TEST_ISOLATION") == nullptr) {
            throw std::logic_error("this is not a private board");
        }
        // NXU4A, which has a reset register.
        fakeboard::variant(1).code = {{0, 0, 0, 0, 0, 0, 0, 0}};
        fakeboard::variant(1).productCode = 1;
        fakeboard::setCode(fakeboard::variant(1).code);
        for (const char* channel : {"bsp.core", "Bsp.WarmDatabase", "bsp.networking"}) {
            recordingtrace::setLevel(channel, 0);
        }
    }
    ~WarmCrash() override { restart(); }

    static faults::Work work() { return {GetParam().before, GetParam().work}; }

    /** The board as the process finds it. */
    void makeBoard()
    {
        m_creator.reset();
        restart();
        testsupport::writeFile(areaFile(), firstArea());
        useResetCause(Warm);
        if (GetParam().hasCreator) {
            m_creator = std::make_unique<Creator>(m_answers);
        }
        useResetCause(GetParam().cause);
    }

    /** Looks when what is shared changes, from the beginning of the process to its end. */
    std::vector<Moment> learnMoments()
    {
        std::vector<Moment> moments;
        makeBoard();
        faults::SharedStateWatch watch(areaFile());
        Moment now{-1, 0, {}};
        m_instructions = faults::runStepwise(work(), [&](bool isSystemCall) {
            const bool hasChanged = watch.hasChanged(isSystemCall);
            if (isSystemCall) {
                ++now.systemCalls;
                now.changes = 0;
            } else if (hasChanged) {
                ++now.changes;
            }
            if (hasChanged) {
                moments.push_back({now.systemCalls, now.changes, watch.state()});
            }
        });
        return moments;
    }

    /** Kills a process at that moment; what it leaves. */
    SharedState killAt(const Moment& moment)
    {
        makeBoard();
        faults::SharedStateWatch watch(areaFile());
        int changes = -1; // The first look finds all that was done in system calls.
        const auto calls = static_cast<std::size_t>(moment.systemCalls);
        faults::killWhen(work(), calls, [&] {
            changes += watch.hasChanged(changes == -1) ? 1 : 0;
            return changes == moment.changes;
        });
        EXPECT_TRUE(withoutOwner(watch.state()) == withoutOwner(moment.state));
        return watch.state();
    }

    void expectAnswers(const std::string& answers, const std::string& model)
    {
        ++m_cells;
        const bool isWaiting = answers.find("waits") != std::string::npos;
        m_waiting += isWaiting ? 1 : 0;
        EXPECT_EQ(answers, model);
        if (GetParam().keepsOld && answers.rfind("OLD", 0) == 0) {
            EXPECT_THAT(answers, testing::StartsWith("OLD is " + OldData));
        }
    }

    /** Who locks out others does so for all of a change: they find it done, not done, or wait. */
    static void expectNothingHalfDone(const std::string& answers)
    {
        if (answers.find("waits") == std::string::npos) {
            EXPECT_THAT(answers, testing::EndsWith(", 29 free"));
            const bool isCold = GetParam().cause == Cold;
            EXPECT_THAT(answers, testing::StartsWith(isCold ? "OLD is new" : "OLD is "));
            if (GetParam().work == setSlot6) {
                EXPECT_THAT(answers, testing::AnyOf(testing::HasSubstr(", slot 5,"),
                                                    testing::HasSubstr(", slot 6,")));
            }
        }
    }

    /** After a restart only the area is as it was left. */
    void expectRestartsGoOn(const SharedState& left)
    {
        m_creator.reset();
        for (const ResetCause cause : {Cold, Warm, Watchdog, Unknown}) {
            SCOPED_TRACE("restart " + std::to_string(cause));
            restart();
            testsupport::writeFile(areaFile(), left.area);
            const std::string answers = answersOfNewcomer(cause, m_answers);
            if (cause == Cold) {
                ++m_cells;
                EXPECT_EQ(answers, "OLD is new, NEW is new, slot -1, 29 free");
            } else {
                expectAnswers(answers, Model::answers({left.area, {}, {}}));
            }
        }
    }

    SharedText m_answers;
    std::unique_ptr<Creator> m_creator;
    std::size_t m_instructions = 0;
    int m_cells = 0;
    int m_waiting = 0;
};

TEST_P(WarmCrash, LeavesWhatOthersCanGoOnFromOrWaitFor)
{
    const auto moments = learnMoments();
    for (const Moment& moment : moments) {
        SCOPED_TRACE("killed after " + std::to_string(moment.systemCalls) + " system calls and " +
                     std::to_string(moment.changes) + " changes");
        const SharedState left = killAt(moment);
        {
            SCOPED_TRACE("another process starts");
            const std::string answers = answersOfNewcomer(GetParam().cause, m_answers);
            expectAnswers(answers, Model::answersOfNewcomer(left, GetParam().cause));
            expectNothingHalfDone(answers);
        }
        if (m_creator) {
            SCOPED_TRACE("the process beside it goes on");
            const std::string model = Model::answers(killAt(moment));
            const std::string answers = m_creator->answers();
            expectAnswers(answers, model);
            expectNothingHalfDone(answers);
        }
        if (m_creator) {
            // It takes the names away; the next one decides about the area again.
            SCOPED_TRACE("the next generation");
            const SharedState other = killAt(moment);
            m_creator->exit();
            expectAnswers(answersOfNewcomer(Warm, m_answers), Model::answers({other.area, {}, {}}));
        }
        expectRestartsGoOn(left);
    }
    EXPECT_FALSE(moments.empty());
    std::cout << GetParam().name << ": " << m_instructions << " instructions, killed at "
              << moments.size() << " of them; " << m_cells << " cells, in " << m_waiting
              << " of which the others wait for the restart\n";
}

INSTANTIATE_TEST_SUITE_P(
    Works, WarmCrash,
    testing::Values(Scenario{"startAfterCold", nullptr, open, false, Cold, false},
                    Scenario{"startAfterWarm", nullptr, open, false, Warm, true},
                    Scenario{"startBesideAnother", nullptr, open, true, Warm, true},
                    Scenario{"create", open, createNew, false, Warm, true},
                    Scenario{"createBesideAnother", open, createNew, true, Warm, true},
                    Scenario{"createAgain", open, createOld, false, Warm, false},
                    Scenario{"createAgainBesideAnother", open, createOld, true, Warm, false},
                    Scenario{"retrieve", open, retrieveOld, true, Warm, true},
                    Scenario{"getOrCreate", open, getNew, true, Warm, true},
                    Scenario{"getOrCreateOfWhatIsThere", open, getOld, true, Warm, true},
                    Scenario{"slotSet", setSlot5, setSlot6, false, Warm, true},
                    Scenario{"slotSetBesideAnother", setSlot5, setSlot6, true, Warm, true},
                    Scenario{"slotGet", setSlot5, getSlot, true, Warm, true},
                    Scenario{"slotFirstUse", open, getSlot, false, Warm, true},
                    Scenario{"slotFirstUseBesideAnother", open, getSlot, true, Warm, true},
                    Scenario{"exitOfTheCreator", setSlot5, end, false, Warm, true},
                    Scenario{"exitBesideAnother", setSlot5, end, true, Warm, true}),
    [](const auto& chosen) { return std::string(chosen.param.name); });

} // namespace
