// The reference room, started and followed for some steps, for benchmarks to work on.
#pragma once

#include <memory>

#include "continuous/sorn-runt.h"
#include "fixtures/the_run.h"
#include "silence.h"

extern CompiledModel const therm_model;

// The rate of change that the model itself would show in the middle of its bounds, while heating.
class RoomBench {
public:
    RoomBench() {
        newPlant(therm_model);
        tavro_initialize(theRun(), 1, 0.01, "", 0);
        theRun().engine.meas = {heatingRate()};
    }
    ~RoomBench() { endPlant(); }

    // Follows the room for *steps* cycles of heating.
    void follow(int steps, RunOptions const& options) {
        for (int i = 0; i < steps; ++i) {
            theRun().engine.meas = {heatingRate()};
            bool nominal = false;
            tavro_doCycle(theRun(), options, 0.0, ++time, nominal);
        }
    }

    // Makes *count* candidates of the first one.
    static void multiply(std::size_t count) {
        hybTrajectory const& first = *theRun().tracked_trajs.begin()->second;
        HybMap copies;
        for (std::size_t i = 0; i < count; ++i)
            copies.emplace(
                0.0, std::make_unique<hybTrajectory>(&first, first.traj->getCurrentTime() + 1));
        theRun().tracked_trajs = std::move(copies);
        theRun().hybNT = theRun().tracked_trajs.begin()->second.get();
    }

    static double heatingRate() {
        s_runtime const* rt = theRun().tracked_trajs.begin()->second->rt.get();
        s_Objet const& x = sn_getVarDico(rt, "room.x")->old;
        return 0.05 * (20.0 - (sn_infOf(x) + sn_supOf(x)) / 2.0) + 0.15;
    }

    double time = 0.0;
};
