// From the histories that a search found to its answers, under the rule `histories`.
//
// Classic: each history is an answer. Once a failure may be placed at any step (dead_ends.cpp), the
// same failure comes out as many histories, each with its part of the probability: a likely failure
// that fits at five steps is pushed down below an unlikely one that fits at a single step, and a
// history to which two orders of expansion lead comes out twice.
//
// Under the rule histories that end in the same modes are one answer, with the sum of their
// probabilities: what happens from now on depends on the modes of now alone, so the sum is the
// probability of the answer, exactly. The likeliest history stands for all, and keeps the steps at
// which any of them has placed a failure. A history counts once, whichever way led to it: two with
// the same modes at every step and the same transitions are one.
#include <set>

#include "model/StateVar.h"
#include "model/labels.h"
#include "reasoning/Diagnoser.h"

namespace {

// The steps of the failures that the window of the history holds.
Trajectory::FailureSteps failuresOf(Trajectory const& history) {
    Trajectory::FailureSteps steps;
    for (int t = history.firstTime + 1; t <= history.getCurrentTime(); ++t)
        for (Transition const* transition : history.getStateTransitions(t))
            if (transition->type == transFail)
                steps[transition->id].insert(t);
    return steps;
}

// The same, with what an earlier search has answered of a failure that is still where it was, or
// that has left the window.
Trajectory::FailureSteps allFailuresOf(Trajectory const& history) {
    Trajectory::FailureSteps steps = failuresOf(history);
    for (auto const& [id, earlier] : history.failureSteps) {
        auto const own = steps.find(id);
        bool const stands = own == steps.end() ? *earlier.begin() <= history.firstTime
                                               : earlier.count(*own->second.begin()) != 0;
        if (stands)
            steps[id].insert(earlier.begin(), earlier.end());
    }
    return steps;
}

// The other history ends as the answer does, and goes into it.
void takeIn(Trajectory& answer, double& sum, Trajectory const& other) {
    sum += other.weight();
    for (auto const& [id, steps] : allFailuresOf(other))
        answer.failureSteps[id].insert(steps.begin(), steps.end());
}

}  // namespace

// The modes that hold at a step, in the order of the plant.
std::string Diagnoser::modesAt(Trajectory const& history, int t) const {
    std::string text;
    for (StateVar const* variable : stateVars) {
        if (variable->type != typeMode)
            continue;
        for (Atom const* atom : variable->getAtomLinks())
            if (TrajEl const* element = history.getElt(atom->getId(), t, 0);
                element != nullptr && element->evalTrajEl())
                text += std::string(atom->getId()) + " ";
        text += ";";
    }
    return text;
}

std::string Diagnoser::endOf(Trajectory const& history) const {
    return modesAt(history, history.getCurrentTime());
}

// What a history went through: modes, and the transitions that are not idle.
std::string Diagnoser::pathOf(Trajectory const& history) const {
    std::string text;
    for (int t = history.firstTime; t <= history.getCurrentTime(); ++t) {
        std::set<int> taken;
        for (Transition const* transition : history.getStateTransitions(t))
            if (!transition->idle)
                taken.insert(transition->id);
        text += modesAt(history, t);
        for (int const id : taken)
            text += std::to_string(id) + " ";
        text += "\n";
    }
    return text;
}

// *found* has the likeliest history first.
TrajectoryMap Diagnoser::answersOf(TrajectoryMap found) {
    struct Answer {
        std::unique_ptr<Trajectory> history;
        double sum;
    };
    std::vector<Answer> answers;
    std::map<std::string, std::size_t> byEnd;
    std::set<std::string> paths;
    for (auto& entry : found) {
        std::unique_ptr<Trajectory> history = std::move(entry.second);
        if (!paths.insert(pathOf(*history)).second)
            continue;
        auto const [place, isNew] = byEnd.insert({endOf(*history), answers.size()});
        if (isNew) {
            history->failureSteps = allFailuresOf(*history);
            double const weight = history->weight();
            answers.push_back({std::move(history), weight});
        } else {
            Answer& answer = answers[place->second];
            takeIn(*answer.history, answer.sum, *history);
        }
    }
    TrajectoryMap ordered;
    for (Answer& answer : answers) {
        if (answer.history->getLastState()->proba > 0.0)
            answer.history->represented = answer.sum / answer.history->getLastState()->proba;
        ordered.emplace(answer.sum, std::move(answer.history));
    }
    cutAnswers(ordered);
    return ordered;
}

void Diagnoser::cutAnswers(TrajectoryMap& answers) {
    if (answers.size() <= mostAnswers)
        return;
    err << "search: the likeliest " << mostAnswers << " of " << answers.size()
        << " answers are kept\n";
    answers.erase(std::next(answers.begin(), static_cast<long>(mostAnswers)), answers.end());
}
