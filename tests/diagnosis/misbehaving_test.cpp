// The first time that every candidate misbehaves: isolation of each, what is found for each set of
// atoms, and which candidates the run goes on with; and the alarms after that.
#include "diagnosis/fault_run.h"
#include "fixtures/the_run.h"

using namespace diagnosis_fixture;

namespace {

constexpr std::size_t absent = std::string::npos;

std::size_t countOf(std::string const& text, std::string const& part) {
    std::size_t found = 0;
    for (std::size_t at = text.find(part); at != absent; at = text.find(part, at + part.size()))
        ++found;
    return found;
}

// The room whose thermostat has stuck on, at the alarm: its misbehaving candidates in hand, not yet
// isolated.
class AtTheAlarm : public testing::Test {
protected:
    AtTheAlarm() : run({"stuck_on", 0, 3}) {
        EXPECT_TRUE(run.toAlarm(40));
        theRun().misbtrajs = std::move(theRun().tracked_trajs);
        theRun().tracked_trajs.clear();
    }
    Streams handle() {
        return streamsOf(
            [&] { allUnknown = handleMisbTrajs(theRun(), CYCLE_DETECT + 1, 3, run.time); });
    }
    // Diagnoses the first candidate for these sets of modes of the thermostat, "" for no atom.
    Streams diagnose(std::vector<std::vector<std::string>> const& sets) {
        auto candidate = std::move(theRun().misbtrajs.begin()->second);
        candidate->rt->bridgeConflicts.emplace();
        for (auto const& set : sets) {
            auto& atoms = candidate->rt->bridgeConflicts->emplace_back();
            for (std::string const& mode : set)
                atoms.push_back(modeAtom(mode));
        }
        return streamsOf([&] { insertDiagnosis(theRun(), std::move(candidate), found); });
    }
    static Atom* modeAtom(std::string const& mode) {
        auto const found = thePlant().active_atoms.find(("thermostat.mode=" + mode).c_str());
        return found == thePlant().active_atoms.end() ? nullptr : found->second;
    }

    FaultRun run;
    HybMap found;
    bool allUnknown = false;
};

// ---- From the sets of atoms to explanations ----

TEST_F(AtTheAlarm, EverySetOfACandidateIsDiagnosed) {
    Streams const told = diagnose({{"stuck_on"}, {"stuck_off"}});
    // Neither mode holds: each set is explained by the history as it is.
    EXPECT_EQ(countOf(told.err, "[Scheduler] --> updating tracked trajectories"), 2u);
    ASSERT_EQ(found.size(), 2u);
    for (auto const& entry : found)
        EXPECT_EQ(thermostatOf(entry.second.get()), "off");
}

// All atoms of a set are taken to be false together, so one that holds refutes the history.
TEST_F(AtTheAlarm, TheAtomsOfASetAreFalseTogether) {
    diagnose({{"stuck_on", "off"}});
    ASSERT_FALSE(found.empty());
    for (auto const& entry : found) {
        EXPECT_NE(thermostatOf(entry.second.get()), "off");
        EXPECT_NE(thermostatOf(entry.second.get()), "stuck_on");
    }
}

TEST_F(AtTheAlarm, WithoutASetACandidateVanishes) {
    diagnose({});
    EXPECT_TRUE(found.empty());
}

TEST_F(AtTheAlarm, AnAtomThatIsNoneIsLeftOut) {
    diagnose({{"", "stuck_on"}});
    EXPECT_EQ(found.size(), 1u);
}

// ---- All of them ----

TEST_F(AtTheAlarm, EachIsIsolatedAndItsSetsAreShown) {
    std::size_t const misbehaving = theRun().misbtrajs.size();
    Streams const told = handle();
    EXPECT_EQ(countOf(told.err, "Diagnostic Results:\n"), misbehaving);
    EXPECT_EQ(countOf(told.err, "Diagnosis at continuous level in: "), misbehaving);
    EXPECT_EQ(countOf(told.err, " seconds.\n"), misbehaving);
    // The thermostat is off: the suspects stand on a closed window, on a known one, and on a heater
    // that does not heat.
    EXPECT_EQ(countOf(told.out,
                      "size : 1\nroom.mode=closed\n"
                      "size : 2\nroom.mode=closed\nroom.mode=open\n"
                      "size : 2\nthermostat.mode=stuck_off\nthermostat.mode=off\n"),
              misbehaving);
}

TEST_F(AtTheAlarm, IsolationAndSearchAreToldInTheirOrder) {
    Streams const told = handle();
    std::size_t const text = told.err.find("Diagnostic Results:\n");
    std::size_t const isolated = told.err.find("Diagnosis at continuous level in: ");
    std::size_t const searched = told.err.find("---------> Diagnosing...\n");
    std::size_t const completed = told.err.find("Diagnosis completed\n");
    EXPECT_LT(text, isolated);
    EXPECT_LT(isolated, searched);
    EXPECT_LT(searched, told.err.rfind("Diagnosis at continuous level in: "))
        << "a candidate is searched for before the next is isolated";
    EXPECT_LT(searched, completed);
    EXPECT_LT(completed, absent);
    EXPECT_GT(completed, told.err.rfind("---------> Diagnosing...\n"));
}

TEST_F(AtTheAlarm, TheMisbehavingOnesAreReplacedByTheirDiagnoses) {
    theRun().ntrajs.emplace(
        1.0, std::make_unique<hybTrajectory>(theRun().misbtrajs.begin()->second.get(), 1));
    theRun().tracked_trajs.emplace(1.0, std::make_unique<hybTrajectory>());
    handle();
    EXPECT_TRUE(theRun().ntrajs.empty());
    EXPECT_TRUE(theRun().misbtrajs.empty());
    EXPECT_GT(FaultRun::count("stuck_on"), 0);
    for (auto const& entry : theRun().tracked_trajs) {
        ASSERT_NE(entry.second->traj, nullptr);
        EXPECT_EQ(entry.second->traj->rank, 1.0);
        EXPECT_EQ(entry.first, 1.0);
    }
}

// The histories carry the mark of an unknown mode on into their diagnoses.
TEST_F(AtTheAlarm, AllAreUnknownOnlyWhenEachIs) {
    for (auto const& entry : theRun().misbtrajs)
        entry.second->traj->setUnknown();
    theRun().misbtrajs.begin()->second->traj->unknown = false;
    handle();
    EXPECT_FALSE(allUnknown);
}

TEST_F(AtTheAlarm, WithUnknownModesAloneTheAnswerIsSo) {
    for (auto const& entry : theRun().misbtrajs)
        entry.second->traj->setUnknown();
    handle();
    EXPECT_TRUE(allUnknown);
    EXPECT_FALSE(theRun().tracked_trajs.empty());
}

TEST_F(AtTheAlarm, CopiesHaveTheKeysAndNothingElseInCommon) {
    HybMap const copies = copyHybTrajectories(theRun().misbtrajs);
    ASSERT_EQ(copies.size(), theRun().misbtrajs.size());
    auto source = theRun().misbtrajs.begin();
    for (auto const& entry : copies) {
        EXPECT_EQ(entry.first, source->first);
        EXPECT_NE(entry.second->rt->num, source->second->rt->num);
        EXPECT_NE(entry.second->traj, source->second->traj);
        EXPECT_EQ(entry.second->traj->getCurrentTime(), source->second->traj->getCurrentTime());
        ++source;
    }
}

// ---- Blind state tracking ----

TEST_F(AtTheAlarm, AtTheTimeOfTheDetectionNothingIsReplayedBlindly) {
    HybMap target;
    HybMap copies = copyHybTrajectories(theRun().misbtrajs);
    copies.begin()->second->traj->transByTime = {{5, thePlant().active_trans[2]}};
    std::string const told =
        complaint([&] { switchToBST(theRun(), target, std::move(copies), 27.0, 27.0, 3); });
    EXPECT_EQ(told, "switching to blind state tracking\n");
    EXPECT_TRUE(target.empty());
}

// Two copies, of which one failed at a step after the start: that one joins what is tracked.
TEST_F(AtTheAlarm, LaterTheCopiesAreReplayedIntoWhatIsTracked) {
    HybMap target = copyHybTrajectories(theRun().misbtrajs);
    std::size_t const tracked = target.size();
    HybMap copies;
    for (int const step : {0, theRun().misbtrajs.begin()->second->traj->getCurrentTime()}) {
        auto copy = std::make_unique<hybTrajectory>(
            theRun().misbtrajs.begin()->second.get(),
            theRun().misbtrajs.begin()->second->traj->getCurrentTime() + 1);
        copy->traj->transByTime = {{step, thePlant().active_trans[2]}};
        copy->traj->rank = 9.0;
        copies.emplace(0.0, std::move(copy));
    }
    streamsOf([&] { switchToBST(theRun(), target, std::move(copies), run.time, 20.0, 3); });
    EXPECT_GT(target.size(), tracked);
    EXPECT_EQ(target.begin()->first, 9.0);
    EXPECT_EQ(target.begin()->second->traj->transByTime->begin()->first,
              theRun().misbtrajs.begin()->second->traj->getCurrentTime());
}

// ---- In a run ----

TEST(Detection, IsOfTheTimeAndNotNominal) {
    FaultRun run({"stuck_on", 1, 3});
    EXPECT_FALSE(theRun().diag_flag);
    ASSERT_TRUE(run.toAlarm(40));
    EXPECT_EQ(run.time, 27);
    EXPECT_TRUE(theRun().diag_flag);
    EXPECT_EQ(theRun().last_detection_time, 27.0);
    EXPECT_FALSE(run.tells("all trajs misbehave !\n"));
    expectValid();
}

TEST(Detection, ComesAgainInTheNextRun) {
    for (int i = 0; i < 2; ++i) {
        FaultRun run({"stuck_on", 1, 3});
        EXPECT_FALSE(theRun().diag_flag);
        ASSERT_TRUE(run.toAlarm(40));
        EXPECT_TRUE(run.tells("Diagnosis completed\n"));
    }
}

// A biased sensor has no explanation that lasts; the second alarm is told and no more.
TEST(Detection, ComesOnceInARun) {
    FaultRun run({"sensor_bias", 1, 1});
    ASSERT_TRUE(run.toAlarm(60));
    EXPECT_TRUE(run.tells("Diagnosis completed\n"));
    double const first = theRun().last_detection_time;
    ASSERT_TRUE(run.toAlarm(80));
    EXPECT_TRUE(run.tells("all trajs misbehave !\n"));
    EXPECT_FALSE(run.tells("Diagnosis"));
    EXPECT_EQ(theRun().last_detection_time, first);
    expectValid();
}

// Some pair of candidates has the same last state and an overlapping rate.
bool someCouldBeMerged() {
    for (auto a = theRun().tracked_trajs.begin(); a != theRun().tracked_trajs.end(); ++a)
        for (auto b = std::next(a); b != theRun().tracked_trajs.end(); ++b) {
            s_Objet common = valueOf(a->second->rt.get(), "room.xd");
            if (DataManager::compareTrajsStates(a->second->traj->getLastState(),
                                                b->second->traj->getLastState()) &&
                sn_interObjet(&common, &valueOf(b->second->rt.get(), "room.xd")) == 1)
                return true;
        }
    return false;
}

TEST(Detection, MergesWhatItFoundUnlessToldNotTo) {
    {
        FaultRun run({"stuck_on", 1, 1});
        ASSERT_TRUE(run.toAlarm(40));
        EXPECT_FALSE(someCouldBeMerged());
    }
    FaultRun run({"stuck_on", 1, 1, RUN_NOMERGE});
    ASSERT_TRUE(run.toAlarm(40));
    EXPECT_TRUE(someCouldBeMerged());
}

// A history is marked when a mode leaves unknown, not when it enters it. So explanations that end
// in the unknown mode, all that are left here, since every candidate has cooled below 17, are
// accepted.
TEST(Detection, UnknownModesThatTheSearchEnteredAreAccepted) {
    FaultRun run({"stuck_on", 1, 3, RUN_NOMERGE});
    ASSERT_TRUE(run.toAlarm(40));
    EXPECT_EQ(FaultRun::count("unknown"), static_cast<int>(theRun().tracked_trajs.size()));
    EXPECT_FALSE(run.tells("switching to blind state tracking\n"));
    EXPECT_TRUE(theRun().diag_flag);
}

// With marked histories alone nothing is accepted: the run tracks what was found.
TEST(Detection, WithUnknownModesAloneIsBlind) {
    FaultRun run({"stuck_on", 1, 3});
    while (run.time < 26)
        run.step();
    for (auto const& entry : theRun().tracked_trajs)
        entry.second->traj->setUnknown();
    EXPECT_FALSE(run.step());
    EXPECT_TRUE(run.tells("Diagnosis completed\n"));
    EXPECT_TRUE(run.tells("switching to blind state tracking\n"));
    EXPECT_FALSE(run.tells("all trajs misbehave !\n"));
    EXPECT_FALSE(theRun().diag_flag);
    EXPECT_EQ(theRun().last_detection_time, 27.0);
    expectValid();
    EXPECT_TRUE(run.step());
    EXPECT_FALSE(theRun().diag_flag);
    expectValid();
}

}  // namespace
