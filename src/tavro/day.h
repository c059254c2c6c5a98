// What was recorded of a plant: its measures and inputs, step by step, from files.
//
// Two forms are read. The plain one is that of the console: numbers with blanks between, a line per
// step, in the order of the plant's lists; a comment begins with #. The other one is CSV with a
// heading that names variables, in any order, with a comma, a semicolon or a tab between; cells may
// be empty, which is a missing value, and stand in quotes. Which one a file is, its first line
// tells.
//
// A column "time" (or "step", when there is none) places the rows: where steps are left out, they
// are made, with everything missing. Times are seconds, or dates as 2026-11-22T09:30:00.
//
// What is odd but readable is told once, as a note. What cannot be read as it stands is refused.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "tavro/tavro.hpp"

// A file that cannot be read as it stands, with its place.
class DataRefused : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct Day {
    std::vector<tavro::Line> lines;  // inputs and measures are whole; NaN is missing
    std::vector<std::string> notes;
};

// Without inputs of its own the measure file may have columns for them. Throws DataRefused.
Day readDay(tavro::Plant const& plant, std::string const& measureFile,
            std::string const& inputFile);

// Enters the commands of a scenario into the lines of a day; of a discrete plant the scenario is
// the day. Throws DataRefused.
void readScenario(tavro::Plant const& plant, std::string const& file, Day& day);
