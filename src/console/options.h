// The options of the command line, which stand before the file names and choose how a run reasons.
//
// Only a word that begins with the name of an option and `=` is one, so that every file name that
// could be given before there were options still can.
#pragma once

#include <string>

#include "hybrid/run_settings.h"

struct s_runtime;

// False when the argument is no option. One that cannot be taken ends the process with status 2.
bool takeOption(char const* argument, RunSettings& settings);
// The same for a bound of noise of something that is not measured; null for a discrete plant.
void checkNoise(RunSettings const& settings, s_runtime const* rt);
// What `--help` says of them.
std::string optionsHelp();
