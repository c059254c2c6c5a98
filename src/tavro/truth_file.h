// What a true run leaves behind: a measure file with the truth in comments, a table, or a scenario.
#pragma once

#include <string>

#include "model/Plant.h"
#include "truth/simulator.h"

// A writer turns one step of a run into text at a time; what comes before the first line is its
// heading.
class TruthWriter {
public:
    virtual ~TruthWriter() = default;
    virtual std::string heading() const { return ""; }
    virtual std::string line(truth::Simulator const& run) const = 0;
};

// A line per step, as the console reads it: the measures, and behind `#` the step, the true value
// of every variable and of every discrete one.
class MeasureFile : public TruthWriter {
public:
    explicit MeasureFile(Plant const& plant) : plant(plant) {}
    std::string line(truth::Simulator const& run) const override;

private:
    Plant const& plant;
};

// Comma-separated values with a heading: the step, the time in seconds, the measures under their
// names, all variables under "true " and their names, and the discrete ones.
class TruthTable : public TruthWriter {
public:
    explicit TruthTable(Plant const& plant) : plant(plant) {}
    std::string heading() const override;
    std::string line(truth::Simulator const& run) const override;

private:
    Plant const& plant;
};

// Of a discrete plant: for each step what is commanded, then what is seen. Its start has no lines.
class ScenarioFile : public TruthWriter {
public:
    explicit ScenarioFile(Plant const& plant) : plant(plant) {}
    std::string line(truth::Simulator const& run) const override;

private:
    Plant const& plant;
};
