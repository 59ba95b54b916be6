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
#include "Namespaces.h"
#include "RecordingTrace.h"
#include "SharedState.h"
#include "SteppedProcess.h"
#include "WarmDatabase.h"
#include "WarmModel.h"
#include "WarmUsers.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using namespace faults;
using os::bsp::dtcm::WarmDatabase;

const std::string& areaFile()
{
    return fakedevices::dtcm().path;
}

// What is killed.

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
    findOrCreate("NEW", isCreated);
}

void getOld()
{
    bool isCreated = false;
    findOrCreate("OLD", isCreated);
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

void restart()
{
    std::filesystem::remove(SemaphoreFile);
    std::filesystem::remove(MutexesFile);
}

/** A moment at which what is shared had just changed. */
struct Moment
{
    int systemCalls; /**< Made until then. */
    int changes;     /**< Since the last of them. */
    SharedState state;
};

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
        if (std::getenv("BSP_TEST_PRIVATE_BOARD") == nullptr) {
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

    void SetUp() override
    {
        if (!testsupport::haveNamespaces()) {
            GTEST_SKIP() << testsupport::NoNamespaces << "a traced program cannot be traced again";
        }
    }

    static Work work() { return {GetParam().before, GetParam().work}; }

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
        SharedStateWatch watch(areaFile());
        Moment now{-1, 0, {}};
        m_instructions = runStepwise(work(), [&](bool isSystemCall) {
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
        SharedStateWatch watch(areaFile());
        int changes = -1; // The first look finds all that was done in system calls.
        const auto calls = static_cast<std::size_t>(moment.systemCalls);
        killWhen(work(), calls, [&] {
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
                expectAnswers(answers, modelAnswers({left.area, {}, {}}));
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
            expectAnswers(answers, modelAnswersOfNewcomer(left, GetParam().cause));
            expectNothingHalfDone(answers);
        }
        if (m_creator) {
            SCOPED_TRACE("the process beside it goes on");
            const std::string model = modelAnswers(killAt(moment));
            const std::string answers = m_creator->answers();
            expectAnswers(answers, model);
            expectNothingHalfDone(answers);
        }
        if (m_creator) {
            // It takes the names away; the next one decides about the area again.
            SCOPED_TRACE("the next generation");
            const SharedState other = killAt(moment);
            m_creator->exit();
            expectAnswers(answersOfNewcomer(Warm, m_answers), modelAnswers({other.area, {}, {}}));
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
