// Mapping functions: what a transition does to the continuous state when it fires.
//
// A Transition owns its mapping functions. Guards are conditions of the model's own runtime; a
// candidate evaluates its copy of them.
#pragma once

#include <string>
#include <vector>

struct s_Condition;

// One assignment: the target variable by name, and the index of its expression in the runtime.
struct s_mapfVar {
    std::string name;
    int expr = 0;
};

struct MapFunc {
    s_Condition* guard = nullptr;  // null means always
    std::vector<s_mapfVar> vars;
};
