// A run of the plant that this executable is linked with: the first data lines, and then a cycle at
// a time with the lines that the test gives. All that the tests of plants know of the engine is
// here.
#pragma once

#include <algorithm>
#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

#include "console/exchange.h"
#include "fixtures/reference_model.h"
#include "fixtures/the_run.h"
#include "reasoning/scheduler_fixture.h"

namespace plants {

using scheduler_fixture::streamsOf;
using scheduler_fixture::TextFile;

inline std::string line(std::vector<double> const& values) {
    std::ostringstream text;
    text << std::setprecision(17);
    for (double const value : values)
        text << value << " ";
    text << "\n";
    return text.str();
}

class PlantRun {
public:
    // *search*: whether the bound search is on; a plant may ask for it in its influences.
    explicit PlantRun(int search = 0) : before(theRun().engine.env_opti) {
        theRun().engine.env_opti = search;
    }
    ~PlantRun() { theRun().engine.env_opti = before; }

    void start(std::vector<double> const& inputs, std::vector<double> const& measures) {
        TextFile const inputFile(line(inputs)), measureFile(line(measures));
        dataIn = std::fopen(inputFile.path.c_str(), "r");
        measIn = std::fopen(measureFile.path.c_str(), "r");
        streamsOf([] { tavro_initialize(theRun(), 1, 0.01, "", 0); });
        for (std::FILE** file : {&dataIn, &measIn}) {
            std::fclose(*file);
            *file = nullptr;
        }
        initDispAll(theRun().hybNT->rt.get(), 250.0);
    }

    // Answers whether a candidate agrees with the measures; in a simulation that means nothing.
    bool cycle(RunOptions const& options, double time, std::vector<double> const& inputs,
               std::vector<double> const& measures) {
        bool nominal = false;
        theRun().engine.inps = inputs;
        theRun().engine.meas = measures;
        streamsOf([&] { tavro_doCycle(theRun(), options, 0.0, time, nominal); });
        return nominal;
    }

    static std::vector<s_runtime*> candidates() {
        std::vector<s_runtime*> runtimes;
        for (auto const& entry : theRun().tracked_trajs)
            runtimes.push_back(entry.second->rt.get());
        return runtimes;
    }

    ReferenceModel model;

private:
    int before;
};

inline RunOptions simulation() {
    RunOptions options;
    options.multi = 1;
    return options;
}

inline RunOptions detection(int threshold) {
    RunOptions options;
    options.mode = RUN_DETECT;
    options.isolation = CYCLE_DETECT;
    options.threshold = threshold;
    return options;
}

inline s_Variable* variable(s_runtime const* rt, std::string const& name) {
    s_Variable* found = sn_getVarDico(rt, name.c_str());
    EXPECT_NE(found, nullptr) << name;
    return found;
}

inline bool holds(s_Objet const& value, double point, double slack = 1e-9) {
    return sn_infOf(value) - slack <= point && point <= sn_supOf(value) + slack;
}

inline void expectBounds(s_Objet const& value, double inf, double sup) {
    EXPECT_NEAR(sn_infOf(value), inf, 1e-9);
    EXPECT_NEAR(sn_supOf(value), sup, 1e-9);
}

}  // namespace plants
