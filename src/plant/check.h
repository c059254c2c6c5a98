// Tells what is wrong with a plant before its first step.
//
//   std::vector<Finding> const findings = checkPlant({components, clauses, &runtime});
//   if (isRefused(findings)) ... show every text, and take no step
//
// The check reads; it changes nothing, prints nothing and needs no running engine. It is for a
// plant as it was built and not yet started. All that is found is told at once, element by element
// in the order of the plant's own lists, never by address. When lists and references themselves are
// broken, the rest of the continuous side is not looked at, since all else would follow from that.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "support/hash_map.h"

class Clause;
class Comp;
struct s_runtime;

// What is checked; borrowed for the call.
struct PlantParts {
    string_map<Comp*> const& components;  // by name; nulls are passed over
    std::vector<std::unique_ptr<Clause>> const& clauses;
    s_runtime const* runtime;  // null: a discrete plant
};

// One sentence: which element, what is wrong with it, and what to do.
struct Finding {
    bool refuses;  // certainly a mistake; otherwise legal and probably not meant
    std::string text;
};

std::vector<Finding> checkPlant(PlantParts const& plant);

// Some finding is certainly a mistake: such a plant must not be run.
bool isRefused(std::vector<Finding> const& findings);
