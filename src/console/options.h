// The options of the command line, which stand before the file names and choose how a run reasons.
//
// Only `--strict`, and a word that begins with the name of another option and `=`, is one. A file
// of such a name can be given as ./--strict.
#pragma once

#include <string>

#include "hybrid/run_settings.h"

struct s_runtime;

// False when the argument is no option. One that cannot be taken ends the process with status 2.
bool takeOption(char const* argument, RunSettings& settings);
// Whether the argument is --strict, which chooses a strict session.
bool isStrict(char const* argument);
// The same for a bound of noise of something that is not measured; null for a discrete plant.
void checkNoise(RunSettings const& settings, s_runtime const* rt);
// What `--help` says of them.
std::string optionsHelp();
