// Prime implicates of atoms: for an atom, the alternative sets of atoms that make it hold at once.
//
// With a table, the resolution of a conflict changes all atoms of an alternative in one branch.
// Atoms are borrowed from the model.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "support/hash_map.h"

class Atom;
class Host;

// One alternative, its atoms in the order of the file.
using Implicate = std::vector<Atom*>;
using Implicates = std::vector<Implicate>;

class PiTable {
public:
    // Enters or replaces the list of an atom.
    void addPIAtom(Atom* atom, Implicates list);
    // The list, or null when the atom has none; enters nothing.
    Implicates const* getPIs(Atom const* atom) const;
    void showPI(std::ostream& out, Atom const* atom) const;
    void showAllPI(std::ostream& out) const;
    // Writes name + ".pi": a line an atom, "head:" and the alternatives, separated by ",", each a
    // list of ids separated by one blank. readPI of the truth maintenance reads it back.
    bool writePI(Host& host, char const* name) const;

private:
    struct Entry {
        Atom* atom = nullptr;
        Implicates list;
    };
    string_map<Entry> table;  // by atom id, so that no order depends on addresses
};
