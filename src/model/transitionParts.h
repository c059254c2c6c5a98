// What the components of a compiled model make their transitions and links from.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "model/Atom.h"
#include "model/Transitionrt.h"

// A transition with a guard of signed literals and one effect.
inline std::unique_ptr<Transition> mkTransition(std::vector<std::pair<Atom*, bool>> const& guard,
                                                char const* operat, Atom* effect, char const* type,
                                                double proba, bool idle) {
    auto pre = std::make_unique<StateFormula>();
    for (auto const& [atom, sign] : guard)
        pre->addAtom(atom, sign);
    pre->setOperat(operat);
    auto post = std::make_unique<StateFormula>();
    post->addAtom(effect, true);
    return std::make_unique<Transition>(std::move(pre), std::move(post), type, proba, 0.0, idle);
}

// The atom holds exactly when condition *index* of the runtime is true.
template <typename Variable>
void linkAtom(Variable* variable, Atom* atom, int index) {
    variable->condMap.insert({atom->getId(), index});
    atom->bridged = true;
}
