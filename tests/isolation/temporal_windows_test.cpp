// Where an isolation may lead the program to its end: a fault outside the temporal windows, and
// suspects of whom no atom can be accused. With the statuses of the process and the last words.
#include <unistd.h>

#include "continuous/isolation.h"
#include "continuous/model_parts.h"
#include "fixtures/the_run.h"
#include "hybrid/hybrid_fixture.h"
#include "support/run_stopped.h"

using namespace hybrid_fixture;

namespace {

// The room at the time of an alarm, 10, in the hands of one candidate.
class AtTheAlarm : public testing::Test {
protected:
    static constexpr double now = 10.0;
    static constexpr int threshold = 3;

    // Runs an action in a child process, with both streams on the error stream, and ends with the
    // status of a run that stops.
    template <typename Action>
    static void inChild(Action action) {
        dup2(STDERR_FILENO, STDOUT_FILENO);
        try {
            action();
        } catch (RunStopped const& stop) {
            std::cout.flush();
            _exit(stop.exitStatus());
        }
        std::cerr << "still there" << std::endl;
        _exit(0);
    }
    static hybTrajectory* candidate() { return theRun().tracked_trajs.begin()->second.get(); }
    static s_runtime* rt() { return candidate()->rt.get(); }

    // The candidate becomes a diagnosis whose fault lies at that step, and that step at that time.
    // An entry of step 0 stands before it, as one that is no fault.
    static void diagnosed(int faultStep, double faultTime) {
        candidate()->traj->transByTime = {{0, nullptr}, {faultStep, nullptr}};
        candidate()->traj->timeCorr = {{faultStep, faultTime}};
    }

    RoomRun room{20.0};
};

// ---- The windows ----

using WindowsDeath = AtTheAlarm;

// A window of three cycles before 10 begins at 7.
TEST_F(WindowsDeath, AFaultBeforeTheContinuousWindowEndsTheProgram) {
    rt()->twc = 3;
    diagnosed(1, 6.0);
    EXPECT_EXIT(inChild([] { verifyAndUpdateTrajs(theRun(), now, threshold); }),
                testing::ExitedWithCode(1),
                "discrete fault time: 1\ncont_fault_time: 6 -- stime: 10-- twc: 3\n"
                "The fault isn't in the continuous temporal window !\n$");
    diagnosed(1, 7.0);
    EXPECT_EXIT(inChild([] { verifyAndUpdateTrajs(theRun(), now, threshold); }),
                testing::ExitedWithCode(0), "still there\n$");
}

// The discrete window is of five steps. Required: it is compared with the sample period, so only a
// long one can bring a fault outside.
TEST_F(WindowsDeath, AFaultBeforeTheDiscreteWindowEndsTheProgram) {
    ASSERT_EQ(theRun().scheduler.book.twd, 5);
    rt()->Ts = 10.0;
    diagnosed(4, 9.0);
    EXPECT_EXIT(inChild([] { verifyAndUpdateTrajs(theRun(), now, threshold); }),
                testing::ExitedWithCode(1), "The fault isn't in the discrete temporal window !\n$");
    diagnosed(5, 9.0);
    EXPECT_EXIT(inChild([] { verifyAndUpdateTrajs(theRun(), now, threshold); }),
                testing::ExitedWithCode(0), "still there\n$");
}

TEST_F(WindowsDeath, TheDiscreteWindowIsLookedAtFirst) {
    rt()->Ts = 10.0;
    rt()->twc = 3;
    diagnosed(4, 6.0);
    EXPECT_EXIT(inChild([] { verifyAndUpdateTrajs(theRun(), now, threshold); }),
                testing::ExitedWithCode(1), "The fault isn't in the discrete temporal window !\n$");
}

// A step that the history gives no time for counts as one far in the future: there is nothing to
// replay, and no window that it is outside of.
TEST_F(WindowsDeath, AFaultWithoutATimeIsNotReplayed) {
    rt()->twc = 3;
    diagnosed(2, 6.0);
    candidate()->traj->timeCorr.clear();
    streamsOf([] { EXPECT_FALSE(verifyAndUpdateTrajs(theRun(), now, threshold)); });
    EXPECT_EQ(theRun().tracked_trajs.size(), 1u);
}

// Without a fault there is nothing to go back to.
TEST_F(WindowsDeath, ACandidateWithoutAFaultIsNotMovedBack) {
    rt()->twc = 0;
    hybTrajectory const* before = candidate();
    streamsOf([] { EXPECT_FALSE(verifyAndUpdateTrajs(theRun(), now, threshold)); });
    EXPECT_EQ(candidate(), before);
}

// ---- Without a diagnosis ----

class NoDiagnosisDeath : public AtTheAlarm {
protected:
    // Every influence hangs on this condition; null: on none.
    static void hangOn(s_Condition* condition) {
        for (auto const& influence : rt()->influ)
            influence->cond = condition;
    }
    s_Condition* both() {
        return mkBinaryCond(*rt(), COND_AND,
                            mkAtomCond(*rt(), ReferenceModel::atom("room.mode=closed"), 0),
                            mkAtomCond(*rt(), ReferenceModel::atom("room.mode=open"), 0), 0);
    }
    // The end of the program that the isolation of the candidate at a level leads to.
    static void isolated(int level) {
        theRun().misbtrajs = std::move(theRun().tracked_trajs);
        theRun().misbtrajs.begin()->second->rt->measure[0]->mesmisb = 1;
        handleMisbTrajs(theRun(), CYCLE_DETECT + level, threshold, now);
    }
};

// The suspects are told, but a conjunction of atoms gives no set, and neither does no condition.
TEST_F(NoDiagnosisDeath, SuspectsWithoutASetOfAtomsEndTheProgram) {
    for (int level : {1, 2, 3})
        for (bool conditional : {true, false}) {
            hangOn(conditional ? both() : nullptr);
            EXPECT_EXIT(inChild([=] { isolated(level); }), testing::ExitedWithCode(255),
                        "Diagnostic Results:\n.*R1.*Diagnosis completed\n"
                        "\\[Error\\]: Can't find any diagnose for this fault.\n$");
        }
}

// No suspects, no text, and no set.
TEST_F(NoDiagnosisDeath, WithoutSuspectsTheProgramEnds) {
    for (auto const& influence : rt()->influ)
        influence->condHisto.assign(influence->condHisto.size(), 0);
    EXPECT_EXIT(inChild([] { isolated(1); }), testing::ExitedWithCode(255),
                "^Diagnosis at continuous level in: [0-9.e-]+ seconds.\nDiagnosis completed\n"
                "\\[Error\\]: Can't find any diagnose for this fault.\n$");
}

}  // namespace
