// The set of rules that a run of the engine is asked to keep to, as the option --rules names it.
#pragma once

#include <string>

#include "tavro/tavro.hpp"

namespace quality {

// Whether the engine knows this set of rules.
bool knowsRules(std::string const& rules);

// The one place where rules are handed on to the engine. The rules must be known.
tavro::Options underRules(std::string const& rules, tavro::Options options);

}  // namespace quality
