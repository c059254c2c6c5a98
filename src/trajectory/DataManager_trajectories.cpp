// The registry's operations on trajectories and states.
#include "model/StateVar.h"
#include "model/labels.h"
#include "trajectory/DataManagerrt.h"
#include "trajectory/Trajectoryrt.h"

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
    out << "Trajectories comparison :\n";
    int i = 0;
    for (auto first = trajectories->begin(); first != trajectories->end(); ++first) {
        ++i;
        int j = i;
        for (auto second = std::next(first); second != trajectories->end(); ++second) {
            ++j;
            out << "comparing traj " << i << " and " << j << "\n";
            if (!wentThroughTheSame(*first->second, *second->second))
                continue;
            out << "Traj " << i << " is the same as Traj " << j << " !!!\n";
            first->second->showTrajectoryTransitions(out);
            out << "\n";
        }
    }
    out << "\n";
}

void DataManager::printModes(std::ostream* stream, State const* state) {
    if (stream == nullptr)
        return;
    for (auto const& entry : state->elts) {
        TrajEl const* element = entry.second;
        if (element != nullptr && element->getVarType() == typeMode && element->evalTrajEl())
            *stream << element->atom->linkIndex << " ";
    }
    *stream << "\n";
}

void DataManager::viewTrajectoriesTransitionsMultimap(TrajectoryMap const* trajectories) {
    for (auto const& entry : *trajectories)
        entry.second->showTrajectoryTransitions(out);
}
