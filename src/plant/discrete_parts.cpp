// Making the discrete side of a component.
#include "plant/discrete_parts.h"

void addAtoms(Comp& comp, StateVar* variable, std::string const& shortName,
              std::vector<NamedValue> const& values) {
    for (NamedValue const& named : values) {
        std::string const key = comp.className + "_" + shortName + "_" + named.value;
        *named.atom = comp.newAtom(key.c_str(), variable, named.value);
    }
}

Transition* addMove(Comp& comp, Guard const& guard, Atom* to, char const* type, double proba,
                    bool idle) {
    char const* operat = guard.size() > 1 ? "and" : "";
    return comp.addTransitionToC(mkTransition(guard, operat, to, type, proba, idle));
}
