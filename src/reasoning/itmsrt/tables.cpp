// Membership tests and copies of the engine's tables.
#include <algorithm>
#include <cassert>
#include <cstring>

#include "model/StateVar.h"
#include "reasoning/itmsrt.h"

namespace {

template <typename Member, typename Listed>
bool contains(std::vector<Listed> const& list, Member const* member) {
    return std::find(list.begin(), list.end(), member) != list.end();
}

}  // namespace

bool itms::inVector(TrajEl const* element, std::vector<TrajEl*> const* elements) {
    return contains(*elements, element);
}

bool itms::inVector(Transition const* transition, std::vector<Transition*> const* transitions) {
    return contains(*transitions, transition);
}

bool itms::inVector(char const* text, std::vector<char const*> const* texts) {
    return std::any_of(texts->begin(), texts->end(),
                       [text](char const* other) { return std::strcmp(text, other) == 0; });
}

bool itms::inVectorStateVar(StateVar const* variable, std::vector<StateVar*> const* variables) {
    return contains(*variables, variable);
}

bool itms::inVectorClause(Clause const* clause, std::vector<Clause*> const* clauses) {
    return contains(*clauses, clause);
}

bool itms::inMultimap(Atom const* atom, SignedAtoms const& atoms) {
    return std::any_of(atoms.begin(), atoms.end(),
                       [atom](auto const& entry) { return entry.second == atom; });
}

ElementTable itms::copyState(ElementTable const& table, State const* state) {
    ElementTable copy;
    for (auto const& entry : table)
        copy[entry.first] = state->getElt(entry.first);
    assert(std::all_of(copy.begin(), copy.end(),
                       [](auto const& entry) { return entry.second != nullptr; }));
    return copy;
}

string_map<StateVar*> itms::getStateVars(std::vector<TrajEl*> const* elements) {
    string_map<StateVar*> variables;
    for (TrajEl const* element : *elements)
        variables[element->getStateVar()->getCharName()] = element->getStateVar();
    return variables;
}
