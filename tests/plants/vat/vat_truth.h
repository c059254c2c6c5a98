// True runs of the vat: its own arithmetic on plain numbers, with every uncertain quantity drawn
// within the bounds that the model states. Nothing here knows of intervals.
#pragma once

#include <cmath>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "generated/vat/vat.h"

namespace plants {

class VatTruth {
public:
    explicit VatTruth(unsigned seed) : engine(seed) {
        level = within(vat::firstLow, vat::firstHigh);
        a = std::exp(-3.0 / within(vat::responseLow, vat::responseHigh));
        look();
    }

    // The next sample; the vat dumps right after it is taken.
    void step() {
        double const gained = filling ? inflow : -vat::drain;
        double const mixed = vat::lagGain * level;
        level += within(vat::fillLow, vat::fillHigh) * gained;
        lag = a * lag + (1.0 - a) * mixed;
        look();
        sampled = level;
        if (filling && level >= vat::highStart) {
            filling = false;
            level = vat::dumpFactor * level + vat::dumpRest;
            ++dumps;
        } else if (!filling && level < vat::lowEnd) {
            filling = true;
        }
    }

    std::vector<double> inputs() const { return {inflow, gauge}; }
    std::vector<double> measures() const { return {shown}; }

    // What was sampled, by the name of the variable.
    std::map<std::string, double> samples() const {
        double const x = sampled, z = lag;
        return {{"vat.lag", z},         {"vat.float", shown},
                {"vat.sum", x + z},     {"vat.difference", x - z},
                {"vat.product", x * z}, {"vat.quotient", x / z},
                {"vat.square", x * x},  {"vat.opposite", -x - z},
                {"vat.rest", x - 1.0}};
    }

    double level = 0.0;  // after a dump
    double sampled = 0.0;
    double lag = vat::firstLag;
    bool filling = true;
    int dumps = 0;

private:
    double within(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(engine);
    }

    // What comes out of the sensors, and the inflow until the next sample.
    void look() {
        sampled = level;
        inflow = within(1.0, 2.0);
        gauge = level + within(-vat::gaugeError, vat::gaugeError);
        shown = level + within(-vat::floatError, vat::floatError);
    }

    std::mt19937 engine;
    double a = 0.0, inflow = 0.0, gauge = 0.0, shown = 0.0;
};

}  // namespace plants
