// The registry's operations on trajectories and states, and its end.
#include <cstdio>
#include <iostream>

#include "model/DataManagerrt.h"
#include "model/StateVar.h"
#include "model/labels.h"
#include "trajectory/Trajectoryrt.h"

TrajectoryMap DataManager::tracked_traj;

DataManager::~DataManager() {
    std::cout << "calling destructor of DataManager\n";
    // Keys of these tables live in what is destroyed, so the tables go first.
    active_comps.clear();
    active_atoms.clear();
    active_trans.clear();
    tracked_traj.clear();
    ownedComps.clear();
    cls.clear();
    std::cout << "tracked_traj deleted\n" << std::flush;
}

namespace {

// Every element of *a* has one of the same id and label in *b*.
bool isMatchedBy(State const* a, State const* b) {
    for (auto const& [id, element] : a->elts) {
        if (element == nullptr)
            continue;
        TrajEl const* other = b->getElt(id);
        if (other == nullptr || other->getLabel() != element->getLabel())
            return false;
    }
    return true;
}

// The states of *a*, one after the other from step 0, are those of *b*.
bool wentThroughTheSame(Trajectory const& a, Trajectory const& b) {
    for (int t = 0; t < static_cast<int>(a.states.size()); ++t) {
        State const* mine = a.getState(t);
        State const* theirs = b.getState(t);
        if (mine == nullptr && theirs == nullptr)
            continue;
        if (mine == nullptr || theirs == nullptr || !DataManager::compareTrajsStates(mine, theirs))
            return false;
    }
    return true;
}

}  // namespace

bool DataManager::compareTrajsStates(State const* a, State const* b) {
    return isMatchedBy(a, b) && isMatchedBy(b, a);
}

void DataManager::compareTrajs(TrajectoryMap const* trajectories) {
    std::cout << "Trajectories comparison :\n";
    int i = 0;
    for (auto first = trajectories->begin(); first != trajectories->end(); ++first) {
        ++i;
        int j = i;
        for (auto second = std::next(first); second != trajectories->end(); ++second) {
            ++j;
            std::cout << "comparing traj " << i << " and " << j << "\n";
            if (!wentThroughTheSame(*first->second, *second->second))
                continue;
            std::cout << "Traj " << i << " is the same as Traj " << j << " !!!\n";
            first->second->showTrajectoryTransitions();
            std::cout << "\n";
        }
    }
    std::cout << "\n";
}

void DataManager::printModes(std::FILE* stream, State const* state) {
    if (stream == nullptr)
        return;
    for (auto const& entry : state->elts) {
        TrajEl const* element = entry.second;
        if (element != nullptr && element->getVarType() == typeMode && element->evalTrajEl())
            std::fprintf(stream, "%i ", element->atom->linkIndex);
    }
    std::fprintf(stream, "\n");
}

void DataManager::viewTrajectoriesTransitionsMultimap(TrajectoryMap const* trajectories) {
    for (auto const& entry : *trajectories)
        entry.second->showTrajectoryTransitions();
}
