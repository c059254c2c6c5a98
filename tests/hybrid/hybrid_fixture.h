// What the tests of the hybrid side share: runs of the reference model with measures given by the
// test, and what may be read off a candidate.
#pragma once

#include <iomanip>
#include <optional>
#include <sstream>

#include "console/exchange.h"
#include "fixtures/reference_model.h"
#include "fixtures/the_run.h"
#include "reasoning/scheduler_fixture.h"

namespace hybrid_fixture {

using scheduler_fixture::complaint;
using scheduler_fixture::Streams;
using scheduler_fixture::streamsOf;
using scheduler_fixture::TextFile;

// The options of `detect total nofault threshold`.
inline RunOptions detection(int threshold, int mode = RUN_DETECT) {
    RunOptions options;
    options.mode = mode;
    options.isolation = CYCLE_DETECT;
    options.threshold = threshold;
    return options;
}

// The options of `simul total`, or of `simul total multi`.
inline RunOptions simulation(int multi) {
    RunOptions options;
    options.multi = multi;
    return options;
}

// A run of the reference model. The bound search is off unless a test asks for it, so that every
// bound is what plain interval arithmetic gives.
class RoomRun {
public:
    explicit RoomRun(double firstMeasure, int search = 0) : before(theRun().engine.env_opti) {
        theRun().engine.env_opti = search;
        std::ostringstream line;
        line << std::setprecision(17) << firstMeasure << "\n";
        TextFile const measures(line.str());
        measIn = std::fopen(measures.path.c_str(), "r");
        start = streamsOf([] { tavro_initialize(theRun(), 1, 0.01, "", 0); });
        std::fclose(measIn);
        measIn = nullptr;
        // Room for the display rows of a run, as the console makes it.
        initDispAll(theRun().hybNT->rt.get(), 250.0);
    }
    ~RoomRun() { theRun().engine.env_opti = before; }

    // One cycle at *time* with a measure; answers what it wrote.
    Streams cycle(RunOptions const& options, double time, double measure, double countdown = 0.0) {
        theRun().engine.meas[0] = measure;
        return streamsOf([&] { tavro_doCycle(theRun(), options, countdown, time, nominal); });
    }

    ReferenceModel model;
    Streams start;  // what the initialisation wrote
    bool nominal = false;

private:
    int before;
};

inline s_Variable* variable(s_runtime const* rt, char const* name) {
    return sn_getVarDico(rt, name);
}
inline s_Objet const& valueOf(s_runtime const* rt, char const* name) {
    return variable(rt, name)->old;
}

// The newest label of an atom in a trajectory.
inline std::string label(Trajectory const* traj, char const* id) {
    TrajEl const* element = traj->getElt(id, traj->getCurrentTime(), 0);
    return element != nullptr ? element->getLabel() : "none";
}
// The value of a variable that holds last; "" when none or more than one does.
inline std::string lastValue(Trajectory const* traj, std::string const& variable,
                             std::vector<std::string> const& values) {
    std::string found;
    for (std::string const& value : values)
        if (label(traj, (variable + "=" + value).c_str()) == "true") {
            if (!found.empty())
                return "";
            found = value;
        }
    return found;
}
inline std::string thermostatOf(hybTrajectory const* candidate) {
    return lastValue(candidate->traj.get(), "thermostat.mode",
                     {"off", "on", "stuck_off", "stuck_on", "unknown"});
}
inline std::string windowOf(hybTrajectory const* candidate) {
    return lastValue(candidate->traj.get(), "room.mode", {"closed", "open", "unknown"});
}
inline std::string spaceOf(hybTrajectory const* candidate) {
    return lastValue(candidate->traj.get(), "room.c1", {"c10", "c11", "c12"});
}

// Bounds within the rounding of a few operations.
inline void expectBounds(s_Objet const& value, double inf, double sup) {
    EXPECT_NEAR(sn_infOf(value), inf, 1e-9);
    EXPECT_NEAR(sn_supOf(value), sup, 1e-9);
}

}  // namespace hybrid_fixture
