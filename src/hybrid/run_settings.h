// What is chosen for a run as a whole, before it starts.
#pragma once

#include <map>
#include <string>

#include "support/rules.h"

struct RunSettings {
    static constexpr int candidatesOfLimit = 100;

    Rules rules;
    // So many candidates are followed at most; 0: as many as the rules say.
    int candidates = 0;
    // How far a measure may be from the truth, by the name of its variable; the rule `narrow` reads
    // it. The bound under "" is that of all measures that are not named.
    std::map<std::string, double> noise;

    // The greatest number of candidates that are followed; 0 when there is none.
    int limit() const {
        if (candidates > 0)
            return candidates;
        return rules.limit ? candidatesOfLimit : 0;
    }
    double noiseOf(std::string const& measure) const {
        auto const named = noise.find(measure);
        auto const found = named != noise.end() ? named : noise.find("");
        return found != noise.end() ? found->second : 0.0;
    }
};
