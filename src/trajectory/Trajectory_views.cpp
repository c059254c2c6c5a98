// Printing of trajectories.
#include <iostream>

#include "model/Transitionrt.h"
#include "trajectory/Trajectoryrt.h"

namespace {

void showStepBanner(int t) {
    std::cout << "******** trajectory->timestep " << t << " *********\n";
}

}  // namespace

void Trajectory::showTrajectory(int t) const {
    showStepBanner(t);
    if (State const* state = getState(t))
        state->showState();
}

void Trajectory::showTrajectoryFull(int t) const {
    showStepBanner(t);
    if (State const* state = getState(t))
        state->showFullState();
}

void Trajectory::showTrajectoryLight() const {
    for (int t = 0; t < static_cast<int>(states.size()); ++t)
        showTrajectory(t);
}

void Trajectory::showTrajectoryTransitions() const {
    std::cout << ">>>>>>>>>>> viewing Trajectory (" << rank << ")<<<<<<<<<<<\n"
              << "current time: " << currentTime << "\nproba : " << proba << "\n";
    for (auto const& [t, state] : states) {
        std::cout << "************** timestep " << t << " (cover : " << state->cover
                  << ") **************\n";
        for (Transition const* transition : getStateTransitions(t))
            transition->showTransition();
    }
    std::cout << "\n";
}
