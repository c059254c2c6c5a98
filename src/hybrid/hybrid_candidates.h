// The map of hybrid candidates, as far as the discrete side needs to know it.
#pragma once

#include <functional>
#include <map>
#include <memory>

struct hybTrajectory;

// Candidates, best first; equal keys keep the order of insertion. Owns them.
using HybMap = std::multimap<double, std::unique_ptr<hybTrajectory>, std::greater<double>>;
