// A plant in words and as graphs, for people: what the text came to once every instance was made.
#pragma once

#include <string>
#include <vector>

#include "language/flat.h"

// Component by component: quantities, discrete variables, influences and moves, a line each.
std::string described(FlatPlant const& plant);

// A picture of something, in the language of Graphviz.
struct Picture {
    std::string name;  // for a file
    std::string dot;
};

// First the causal graph: a node per variable, an edge per influence, from cause to effect. Then
// for each variable with moves its modes and the moves between them; failures are drawn in red and
// dashed.
std::vector<Picture> picturesOf(FlatPlant const& plant);
