// The registry's debug printing.
#include "trajectory/DataManagerrt.h"

void DataManager::showComps() {
    for (auto const& [key, comp] : active_comps)
        if (comp != nullptr)
            out << key << " -- " << comp->getName() << "\n";
}

void DataManager::showComp(char const* name, Comp::InfluencePrinter const& showInfluence) {
    auto const found = active_comps.find(name);
    if (found == active_comps.end() || found->second == nullptr) {
        dataError(1, 1);
        return;
    }
    found->second->showComp(out, showInfluence);
}

void DataManager::showClauses() {
    for (auto const& clause : cls)
        clause->showClause(out, true);
}

void DataManager::showAtoms() {
    for (auto const& entry : active_atoms)
        if (entry.second != nullptr) {
            entry.second->showAtom(out, false);
            out << "\n";
        }
}

namespace {

constexpr char const* multimapBanner =
    "*************************** debugging : multimap view ******************************\n";

}  // namespace

void DataManager::viewActiveAtoms(bool full) {
    out << "*************************** active atoms ******************************\n";
    unsigned count = 0;
    for (auto const& entry : active_atoms) {
        if (entry.second == nullptr)
            continue;
        ++count;
        if (full)
            entry.second->showAtom(out, true);
    }
    out << count << " atoms.\n";
}

void DataManager::viewAtomVector(std::vector<Atom*> const* atoms) {
    out << "size : " << atoms->size() << "\n";
    for (Atom const* atom : *atoms)
        atom->showAtom(out, true);
}

void DataManager::viewAtomVectorId(std::vector<Atom*> const* atoms) {
    for (Atom const* atom : *atoms)
        out << (atom != nullptr ? atom->getId() : "null") << "\n";
}

void DataManager::viewAtomVector2(std::vector<std::vector<Atom*>> const* sets) {
    for (auto const& set : *sets) {
        out << "size : " << set.size() << "\n";
        viewAtomVectorId(&set);
    }
}

void DataManager::viewClauseVector(std::vector<Clause*> const* clauses) {
    for (Clause const* clause : *clauses)
        clause->showClause(out, true);
}

void DataManager::viewMultimapAtom(SignedAtoms const* atoms) {
    out << multimapBanner;
    for (auto const& literal : *atoms) {
        out << literal.first << " ";
        literal.second->showAtom(out, false);
        out << "\n";
    }
}

void DataManager::viewHashMapAtom(string_map<Atom*> const* atoms) {
    out << "size : " << atoms->size() << "\n";
    for (auto const& entry : *atoms)
        if (entry.second != nullptr)
            out << entry.second->getId() << "\n";
}
