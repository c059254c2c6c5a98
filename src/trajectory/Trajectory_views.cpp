// Printing of trajectories.
#include "model/Transitionrt.h"
#include "trajectory/Trajectoryrt.h"

namespace {

void showStepBanner(std::ostream& out, int t) {
    out << "******** trajectory->timestep " << t << " *********\n";
}

}  // namespace

void Trajectory::showTrajectory(std::ostream& out, int t) const {
    showStepBanner(out, t);
    if (State const* state = getState(t))
        state->showState(out);
}

void Trajectory::showTrajectoryFull(std::ostream& out, int t) const {
    showStepBanner(out, t);
    if (State const* state = getState(t))
        state->showFullState(out);
}

void Trajectory::showTrajectoryLight(std::ostream& out) const {
    for (int t = 0; t < static_cast<int>(states.size()); ++t)
        showTrajectory(out, t);
}

void Trajectory::showTrajectoryTransitions(std::ostream& out) const {
    out << ">>>>>>>>>>> viewing Trajectory (" << rank << ")<<<<<<<<<<<\n"
        << "current time: " << currentTime << "\nproba : " << proba << "\n";
    for (auto const& [t, state] : states) {
        out << "************** timestep " << t << " (cover : " << state->cover
            << ") **************\n";
        for (Transition const* transition : getStateTransitions(t))
            transition->showTransition(out);
    }
    out << "\n";
}
