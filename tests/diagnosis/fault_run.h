// A run of `detect` on one of the room's measure files, a cycle at a time, with what the tests of
// diagnosis look at: the alarm, the candidates, and what their histories say.
#pragma once

#include "fixtures/the_run.h"
#include "hybrid/hybrid_fixture.h"

namespace diagnosis_fixture {

using namespace hybrid_fixture;

// The words of `init` and `detect`.
struct Setting {
    std::string file;
    int level = 1;  // 0 for `nofault`
    int threshold = 3;
    int mode = RUN_DETECT;
    int accumulation = 0;
};

class FaultRun {
public:
    explicit FaultRun(Setting const& setting) {
        std::string const path = std::string(TAVRO_ROOM) + "/obs/" + setting.file + ".obs";
        options.mode = setting.mode;
        options.isolation = CYCLE_DETECT + setting.level;
        options.threshold = setting.threshold;
        measIn = std::fopen(path.c_str(), "r");
        streamsOf([&] { tavro_initialize(theRun(), 1, 0.01, "", setting.accumulation); });
        initDispAll(theRun().hybNT->rt.get(), 250.0);
    }
    ~FaultRun() {
        std::fclose(measIn);
        measIn = nullptr;
    }

    // One cycle; answers whether some candidate agrees with the measure.
    bool step() {
        ++time;
        bool nominal = false;
        Streams const streams = streamsOf([&] {
            tavro_getMeasures("", 1, theRun().engine.meas.data());
            tavro_doCycle(theRun(), options, 0.0, time, nominal);
        });
        told = streams.err;
        traced = streams.out;
        return nominal;
    }
    // Steps up to the first alarm, *last* at the latest; answers whether there was one.
    bool toAlarm(int last) {
        while (time < last && !theRun().tracked_trajs.empty())
            if (!step())
                return true;
        return false;
    }
    bool tells(char const* text) const { return told.find(text) != std::string::npos; }

    // How many candidates have that mode of the thermostat.
    static int count(std::string const& mode) {
        int found = 0;
        for (auto const& entry : theRun().tracked_trajs)
            if (thermostatOf(entry.second.get()) == mode)
                ++found;
        return found;
    }

    ReferenceModel model;
    int time = 0;
    std::string told, traced;  // what the last cycle wrote, on the error stream and the other one

private:
    RunOptions options;
};

// The thermostat has moved in the newest step of the history.
inline bool switchedLast(Trajectory const& history) {
    for (auto const& entry : history.getLastState()->elts) {
        TrajEl const* element = entry.second;
        if (element != nullptr && element->evalTrajEl() && element->prevTrans != nullptr &&
            !element->prevTrans->idle && element->getStateVar()->name == "thermostat.mode")
            return true;
    }
    return false;
}

// The collections that a cycle leaves are in order: candidates, each with both halves, and the
// nominal one the first of them; nothing of the cycle is left.
inline void expectValid() {
    ASSERT_FALSE(theRun().tracked_trajs.empty());
    EXPECT_EQ(theRun().hybNT, theRun().tracked_trajs.begin()->second.get());
    for (auto const& entry : theRun().tracked_trajs) {
        ASSERT_NE(entry.second, nullptr);
        ASSERT_NE(entry.second->rt, nullptr);
        ASSERT_NE(entry.second->traj, nullptr);
        EXPECT_NE(entry.second->traj->getLastState(), nullptr);
        EXPECT_EQ(entry.second->rt->Ts, 1.0);
    }
    EXPECT_TRUE(theRun().ntrajs.empty());
    EXPECT_TRUE(theRun().misbtrajs.empty());
    EXPECT_TRUE(theRun().engine.nrt.empty());
}

}  // namespace diagnosis_fixture
