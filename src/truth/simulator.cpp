#include "truth/simulator.h"

namespace truth {

Simulator::Simulator(Plant const& plant, Setting const& setting)
    : plant(plant), discrete(plant, setting) {
    if (plant.tavro_rt != nullptr)
        course = std::make_unique<Course>(*plant.tavro_rt, setting);
}

bool Simulator::conditionHolds(int index) {
    return course != nullptr &&
           course->holds(*plant.tavro_rt->condi[static_cast<std::size_t>(index)]);
}

// Influences ask for values of discrete variables.
void Simulator::tellConditions() {
    if (course == nullptr)
        return;
    for (StateVar const* variable : plant.stateVars)
        for (Atom const* atom : variable->getAtomLinks())
            course->tell(*atom, discrete.isTrue(*atom));
}

void Simulator::sample() {
    if (course == nullptr)
        return;
    shown = course->measures();
    sampled.clear();
    for (auto const& variable : plant.tavro_rt->dico)
        sampled.push_back(course->value(*variable));
}

std::vector<Transition const*> Simulator::move() {
    auto taken = discrete.step(time, [this](int condition) { return conditionHolds(condition); });
    tellConditions();
    return taken;
}

void Simulator::jump(std::vector<Transition const*> const& taken) {
    if (course != nullptr)
        for (Transition const* transition : taken)
            course->jump(*transition);
}

// The moves of step 0 act at once: what has no first value of its own is computed under them.
void Simulator::start(std::vector<double> const& inputs) {
    time = 0;
    tellConditions();
    if (course != nullptr)
        course->start(inputs);
    auto const taken = move();
    if (course != nullptr)
        course->restart();
    sample();
    jump(taken);
}

void Simulator::step(std::vector<double> const& inputs) {
    ++time;
    if (course != nullptr)
        course->step(inputs);
    sample();
    jump(move());
}

}  // namespace truth
