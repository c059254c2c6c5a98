// A day of the pumps: what each gauge shows, when the lamp and the valve are commanded, and what a
// run tells of it.
#pragma once

#include <cmath>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "console/exchange.h"
#include "fixtures/reference_model.h"
#include "fixtures/the_run.h"
#include "reasoning/scheduler_fixture.h"

extern CompiledModel const pumps_model;
extern CompiledModel const fast_pumps_model;
extern CompiledModel const lamp_pumps_model;

namespace pumps {

using scheduler_fixture::Streams;
using scheduler_fixture::streamsOf;
using scheduler_fixture::TextFile;

// What is true of a day: every level rises by 1 in a cycle until its pump stops. The pipe stays
// empty, and what drifts stands still.
struct Stops {
    std::map<std::string, int> last;  // by the name of the tank, the last cycle of its pump

    double gauge(std::string const& tank, int cycle) const {
        if (tank == "pipe" || tank == "drift")
            return 0.0;
        auto const stop = last.find(tank);
        return stop != last.end() && stop->second < cycle ? stop->second : cycle;
    }
};

class Day {
public:
    explicit Day(char const* rules, Stops truth = {}, CompiledModel const& model = pumps_model)
        : truth(std::move(truth)) {
        streamsOf([&] { newPlant(model, withRules(rules)); });
        options.mode = RUN_DETECT;
        options.isolation = CYCLE_DETECT + 1;
        options.threshold = 2;
        readLine(0);
        TextFile const first(line());
        measIn = std::fopen(first.path.c_str(), "r");
        streamsOf([] { tavro_initialize(theRun(), 1, 0.01, "", 0); });
        std::fclose(measIn);
        measIn = nullptr;
        initDispAll(theRun().hybNT->rt.get(), 250.0);
    }
    ~Day() {
        streamsOf([] { endPlant(); });
    }
    Day(Day const&) = delete;
    Day& operator=(Day const&) = delete;

    // The command is given at that time.
    void command(double when, char const* atom) {
        auto& event = theRun().scheduler.scenario[when];
        if (event == nullptr)
            event = std::make_unique<scenarEvent>();
        event->isCommand = true;
        event->atoms.push_back(theAtom(atom));
    }

    // One cycle; answers whether a candidate agrees.
    bool step() {
        ++cycle;
        time += theRun().tavro_rt->Ts;
        readLine(cycle);
        theRun().engine.meas = measures;
        bool nominal = false;
        std::optional<RunStopped> stopped;
        told = streamsOf([&] {
                   try {
                       tavro_doCycle(theRun(), options, 0.0, time, nominal);
                   } catch (RunStopped const& why) {
                       stopped.emplace(why);
                   }
               }).err;
        if (stopped)
            throw RunStopped(*stopped);
        return nominal;
    }
    // Steps up to that cycle; answers those at which no candidate agreed.
    std::vector<int> to(int last) {
        std::vector<int> lost;
        while (cycle < last && !theRun().tracked_trajs.empty())
            if (!step())
                lost.push_back(cycle);
        return lost;
    }

    // The lines of the last cycle that begin so, each without that beginning.
    std::vector<std::string> lines(std::string const& beginning) const {
        std::vector<std::string> found;
        std::istringstream text(told);
        for (std::string each; std::getline(text, each);)
            if (each.rfind(beginning, 0) == 0)
                found.push_back(each.substr(beginning.size()));
        return found;
    }
    std::vector<std::string> answers() const { return lines("answer: "); }

    static hybTrajectory& candidate(int place = 0) {
        return *std::next(theRun().tracked_trajs.begin(), place)->second;
    }
    static bool holds(char const* atom, int place = 0) {
        Trajectory const& history = *candidate(place).traj;
        TrajEl const* element = history.getElt(atom, history.getCurrentTime(), 0);
        return element != nullptr && element->evalTrajEl();
    }
    static s_Objet const& bounds(char const* variable, int place = 0) {
        return sn_getVarDico(candidate(place).rt.get(), variable)->old;
    }

    Stops truth;
    std::function<double(std::string const&, int)> shows;  // in place of the truth, if it is given
    RunOptions options;
    int cycle = 0;
    double time = 0.0;
    std::string told;

private:
    void readLine(int now) {
        measures.clear();
        for (s_Variable const* gauge : theRun().tavro_rt->measure) {
            std::string const tank = gauge->nom.substr(0, gauge->nom.find('.'));
            measures.push_back(shows ? shows(tank, now) : truth.gauge(tank, now));
        }
    }
    std::string line() const {
        std::string text;
        for (double const value : measures)
            text += std::to_string(value) + " ";
        return text + "\n";
    }

    std::vector<double> measures;
};

using Lines = std::vector<std::string>;

inline void expectBounds(s_Objet const& value, double inf, double sup) {
    EXPECT_NEAR(sn_infOf(value), inf, 1e-9);
    EXPECT_NEAR(sn_supOf(value), sup, 1e-9);
}

}  // namespace pumps
