// The text of an isolation, taken apart again.
//
// An isolation leaves its suspects as text (continuous/isolation/text.cpp): square brackets around
// a set, curly ones around a suspect, in it the influence's name, its delay and its condition, as
// in
//     [{T1.i1,0,((thermostat.mode=on))}{R1.i4,2,()}][{R1.i1,0,()}]
// A name holds no comma and a condition no curly bracket.
#pragma once

#include <string_view>
#include <vector>

#include "tavro/tavro.hpp"

// The sets of the text, in its order. A text of another form ends where it leaves the form.
std::vector<tavro::SuspectSet> readDiagnosis(std::string_view text);
