// Timed events that drive the discrete side.
#pragma once

#include <map>
#include <memory>
#include <vector>

class Atom;

// Commands given to the system, or observations made of it. Atoms are borrowed.
struct scenarEvent {
    bool isCommand = false;
    std::vector<Atom*> atoms;
    bool met = false;  // some step had its time
};

// By time: step numbers in a discrete run, dates of continuous time in a hybrid one. A null tells
// that an undated scenario has ended.
using Scenario = std::map<double, std::unique_ptr<scenarEvent>>;
