// The parts of a plant as short texts, for words and pictures alike.
#pragma once

#include <string>

#include "language/flat.h"

std::string textOf(Value const& value);
// From inside *component* a name of its own needs no component before it.
std::string nameIn(FlatPlant const& plant, ComponentRef component, QuantityRef quantity);
std::string textOf(FlatPlant const& plant, ComponentRef component, FlatAtom const& atom);
std::string textOf(FlatPlant const& plant, ComponentRef component, FlatCondition const& condition);
// What a move asks for besides the value that it leaves; "" for nothing.
std::string guardOf(FlatPlant const& plant, FlatMove const& move);
std::string const& valueName(FlatPlant const& plant, FlatAtom const& atom);
