// The registry's debug printing.
#include <iostream>

#include "model/DataManagerrt.h"

void DataManager::showComps() {
    for (auto const& [key, comp] : active_comps)
        if (comp != nullptr)
            std::cout << key << " -- " << comp->getName() << "\n";
}

void DataManager::showComp(char const* name) {
    if (active_comps.count(name) == 0 || active_comps[name] == nullptr) {
        dataError(1, 1);
        return;
    }
    active_comps[name]->showComp();
}

void DataManager::showClauses() {
    for (auto const& clause : cls)
        clause->showClause(true);
}

void DataManager::showAtoms() {
    for (auto const& entry : active_atoms)
        if (entry.second != nullptr) {
            entry.second->showAtom(false);
            std::cout << "\n";
        }
}

namespace {

constexpr char const* multimapBanner =
    "*************************** debugging : multimap view ******************************\n";

}  // namespace

void DataManager::viewActiveAtoms(bool full) {
    std::cout << "*************************** active atoms ******************************\n";
    unsigned count = 0;
    for (auto const& entry : active_atoms) {
        if (entry.second == nullptr)
            continue;
        ++count;
        if (full)
            entry.second->showAtom(true);
    }
    std::cout << count << " atoms.\n";
}

void DataManager::viewAtomVector(std::vector<Atom*> const* atoms) {
    std::cout << "size : " << atoms->size() << "\n";
    for (Atom const* atom : *atoms)
        atom->showAtom(true);
}

void DataManager::viewAtomVectorId(std::vector<Atom*> const* atoms) {
    for (Atom const* atom : *atoms)
        std::cout << (atom != nullptr ? atom->getId() : "null") << "\n";
}

void DataManager::viewAtomVector2(std::vector<std::vector<Atom*>> const* sets) {
    for (auto const& set : *sets) {
        std::cout << "size : " << set.size() << "\n";
        viewAtomVectorId(&set);
    }
}

void DataManager::viewClauseVector(std::vector<Clause*> const* clauses) {
    for (Clause const* clause : *clauses)
        clause->showClause(true);
}

void DataManager::viewMultimapAtom(SignedAtoms const* atoms) {
    std::cout << multimapBanner;
    for (auto const& literal : *atoms) {
        std::cout << literal.first << " ";
        literal.second->showAtom(false);
        std::cout << "\n";
    }
}

void DataManager::viewHashMapAtom(string_map<Atom*> const* atoms) {
    std::cout << "size : " << atoms->size() << "\n";
    for (auto const& entry : *atoms)
        if (entry.second != nullptr)
            std::cout << entry.second->getId() << "\n";
}
