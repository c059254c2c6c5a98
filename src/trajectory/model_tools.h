// Graphviz text of components and trajectories, for inspection.
//
// The text is built in memory and handed to the host in one go. A file that it cannot write is not
// reported.
#pragma once

#include <string>

class Atom;
class Comp;
class Host;
class Trajectory;

// The node of an atom at a step: component, "_", value, suffix.
std::string makeNodeName(Atom const* atom, std::string const& suffix);
// The same with the value as its label.
std::string makeNodeNameWithLabel(Atom const* atom, std::string const& suffix);

// Writes <component name>.dot: an edge per transition, from the mode before to the one after, with
// the command that triggers it and its probability.
void toDot(Host& host, Comp const* comp);
// A time line across the page, the modes of each component at each step, and the transitions
// between them.
std::string graphOf(Trajectory const& trajectory, std::string const& name);
// Writes that as <name>.dot.
void toDot(Host& host, Trajectory const* trajectory, std::string const& name);
