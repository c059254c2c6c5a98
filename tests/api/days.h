// The recorded days of the example room, as lines for a run.
#pragma once

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tavro/tavro.hpp"

// The measures of a day, from time 0 on: the first number of each line.
inline std::vector<double> measuresOf(std::string const& day) {
    std::ifstream file(TAVRO_EXAMPLES "/room/obs/" + day + ".obs");
    std::vector<double> measures;
    for (std::string line; std::getline(file, line);) {
        double value = 0.0;
        std::istringstream(line) >> value;
        measures.push_back(value);
    }
    return measures;
}

// Every step of a day up to a time, the start first.
inline std::vector<tavro::Step> follow(tavro::Run& run, std::vector<double> const& measures,
                                       int until) {
    std::vector<tavro::Step> steps;
    steps.push_back(run.start({.measures = {measures.at(0)}}));
    for (int time = 1; time <= until; ++time)
        steps.push_back(run.step({.measures = {measures.at(static_cast<std::size_t>(time))}}));
    return steps;
}
