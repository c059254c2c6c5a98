// The reference room, started and followed for some steps, for benchmarks to work on.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <memory>

#include "console/console.h"
#include "continuous/sorn-runt.h"
#include "hybrid/tavro-runt.h"
#include "reasoning/Scheduler.h"
#include "reasoning/compiled_model.h"

// Sends both standard streams to the null device for its lifetime: the engine's traces would drown
// the results.
class Silence {
public:
    Silence() : out(swap(STDOUT_FILENO)), err(swap(STDERR_FILENO)) {}
    ~Silence() {
        restore(STDOUT_FILENO, out);
        restore(STDERR_FILENO, err);
    }
    Silence(Silence const&) = delete;
    Silence& operator=(Silence const&) = delete;

private:
    static int swap(int descriptor) {
        std::fflush(nullptr);
        int const kept = dup(descriptor);
        int const null = open("/dev/null", O_WRONLY);
        dup2(null, descriptor);
        close(null);
        return kept;
    }
    static void restore(int descriptor, int kept) {
        std::fflush(nullptr);
        dup2(kept, descriptor);
        close(kept);
    }

    int out, err;
};

// The rate of change that the model itself would show in the middle of its bounds, while heating.
class RoomBench {
public:
    RoomBench() {
        rt_num = 0;
        scheduler = std::make_unique<Scheduler>(model_name);
        sMM = scheduler.get();
        startinit(sMM);
        sMM->rtInit();
        localInit(tavro_rt, sMM);
        tavro_initialize(1, 0.01, "", 0);
        meas = {heatingRate()};
    }
    ~RoomBench() {
        clearMultiTrajs();
        sMM = nullptr;
    }

    // Follows the room for *steps* cycles of heating.
    void follow(int steps, RunOptions const& options) {
        for (int i = 0; i < steps; ++i) {
            meas = {heatingRate()};
            bool nominal = false;
            tavro_doCycle(options, 0.0, ++time, nominal);
        }
    }

    // Makes *count* candidates of the first one.
    static void multiply(std::size_t count) {
        hybTrajectory const& first = *tracked_trajs.begin()->second;
        HybMap copies;
        for (std::size_t i = 0; i < count; ++i)
            copies.emplace(
                0.0, std::make_unique<hybTrajectory>(&first, first.traj->getCurrentTime() + 1));
        tracked_trajs = std::move(copies);
        hybNT = tracked_trajs.begin()->second.get();
    }

    static double heatingRate() {
        s_runtime const* rt = tracked_trajs.begin()->second->rt.get();
        s_Objet const& x = sn_getVarDico(rt, "room.x")->old;
        return 0.05 * (20.0 - (sn_infOf(x) + sn_supOf(x)) / 2.0) + 0.15;
    }

    std::unique_ptr<Scheduler> scheduler;
    double time = 0.0;
};
