// What the tests of the search share: silent streams, a first history, and scenarios given as text.
#pragma once

#include <iostream>
#include <memory>
#include <sstream>
#include <streambuf>
#include <string>

#include "fixtures/the_run.h"
#include "reasoning/Scheduler.h"
#include "reasoning/scheduler_fixture.h"

namespace search_fixture {

// While it lives, the error stream goes into a buffer and standard output nowhere.
class Redirected {
public:
    explicit Redirected(std::streambuf* errors) : before(std::cerr.rdbuf(errors)) {
        std::cout.setstate(std::ios::failbit);
    }
    ~Redirected() {
        std::cout.clear();
        std::cerr.rdbuf(before);
    }
    Redirected(Redirected const&) = delete;

private:
    std::streambuf* before;
};

class QuietStreams {
public:
    std::ostringstream errors;

private:
    Redirected redirected{errors.rdbuf()};
};

// A scheduler, which the model is built in and which then follows a history. One at a time: the
// registry of the model is one for the process.
class Engine {
public:
    explicit Engine(char const* model, RunSettings const& settings = {}) {
        newPlant(model, settings);
        scheduler = &theRun().scheduler;
    }
    ~Engine() { endPlant(); }
    Engine(Engine const&) = delete;

    // Once the model is built: tracks one history, of the model's start.
    void start() {
        scheduler->rtInit();
        auto first =
            std::make_unique<Trajectory>(theRun().scheduler.book, &thePlant().active_atoms);
        for (auto const& entry : thePlant().active_comps)
            first->getState(0)->comps[entry.second->getName()] = entry.second;
        theRun().scheduler.tracked_traj.emplace(1.0, std::move(first));
    }
    void run(std::string const& lines) {
        scheduler->runSchD(scheduler_fixture::TextFile(lines).path);
    }

    Scheduler* scheduler;
};

}  // namespace search_fixture
