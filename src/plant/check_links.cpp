// The links between atoms and conditions: each atom leads to its own conditions, and they lead
// back.
//
// Down, an atom that the discrete side settles sets the conditions that condMap leads to, and with
// one on an atom every other condition on it. Up, a condition that enters tells its atom.
#include <algorithm>
#include <cstring>
#include <set>

#include "model/labels.h"
#include "plant/findings.h"
#include "plant/numbering.h"

namespace {

// The conditions that the atom leads to, in the order of their numbers.
std::multiset<int> linksOf(Atom const& atom) {
    std::multiset<int> numbers;
    if (CondMap const* links = linksOf(*atom.getStateVar()))
        for (auto const& [id, number] : *links)
            if (std::strcmp(id, atom.getId()) == 0)
                numbers.insert(number);
    return numbers;
}

// What was found out about one runtime; an atom is told once.
class LinkCheck {
public:
    LinkCheck(s_runtime const& rt, Holdings const& plant, ConditionNames const& nameOf,
              Findings& findings)
        : rt(rt), plant(plant), nameOf(nameOf), findings(findings) {}

    void checkVariable(StateVar const& variable);
    void checkWayBack(s_Condition const& condition);
    void checkFollowing(s_Condition const& condition);

private:
    void refuseAtom(Atom const& atom, std::string const& text);
    void checkTarget(Atom const& atom, int number);
    void checkAtom(Atom const& atom);
    void checkCondValue(Atom const& atom, std::multiset<int> const& links);
    bool isSet(Atom const& atom) const;

    s_runtime const& rt;
    Holdings const& plant;
    ConditionNames const& nameOf;
    Findings& findings;
    std::set<std::string> told;  // ids
};

void LinkCheck::refuseAtom(Atom const& atom, std::string const& text) {
    told.insert(atom.id);
    findings.refuse(::nameOf(atom) + " " + text);
}

void LinkCheck::checkTarget(Atom const& atom, int number) {
    std::string const target = std::to_string(number);
    if (number < 0 || number >= static_cast<int>(rt.condi.size()))
        refuseAtom(atom, "leads to condition " + target + " of " + std::to_string(rt.condi.size()) +
                             ": link it to a numbered condition.");
    else if (rt.condi[static_cast<std::size_t>(number)]->atom != &atom)
        refuseAtom(atom, "leads to condition " + target +
                             ", which is not its own: link it to the condition that holds with "
                             "it.");
}

// The value of a condition variable follows continuous values, and nothing else moves it.
void LinkCheck::checkCondValue(Atom const& atom, std::multiset<int> const& links) {
    if (links.empty()) {
        refuseAtom(atom,
                   "is a value of a condition variable and leads to no condition: link it to "
                   "the one that it stands for.");
        return;
    }
    for (int const number : links)
        if (rt.condi[static_cast<std::size_t>(number)]->kind != COND_ATOM)
            return;
    refuseAtom(atom,
               "is a value of a condition variable and leads to a condition on itself alone: "
               "link it to a comparison.");
}

void LinkCheck::checkAtom(Atom const& atom) {
    std::multiset<int> const links = linksOf(atom);
    for (int const number : std::set<int>(links.begin(), links.end())) {
        checkTarget(atom, number);
        if (links.count(number) > 1)
            findings.warn(::nameOf(atom) + " leads to condition " + std::to_string(number) +
                          " more than once: link them once.");
    }
    if (!links.empty() && !atom.bridged)
        refuseAtom(atom,
                   "leads to a condition and is not marked as bridged: link them with "
                   "linkAtom.");
    if (links.empty() && atom.bridged)
        refuseAtom(atom,
                   "is marked as bridged and leads to no condition: link it to the one that "
                   "holds with it.");
    if (atom.getVarType() == typeCond && told.count(atom.id) == 0)
        checkCondValue(atom, links);
}

void LinkCheck::checkVariable(StateVar const& variable) {
    for (Atom const* atom : variable.getAtomLinks())
        checkAtom(*atom);
    CondMap const* links = linksOf(variable);
    if (links == nullptr)
        return;
    std::set<std::string> strangers;
    for (auto const& entry : *links) {
        auto const& atoms = variable.getAtomLinks();
        if (std::none_of(atoms.begin(), atoms.end(),
                         [&](Atom const* atom) { return atom->id == entry.first; }))
            strangers.insert(entry.first);
    }
    for (std::string const& id : strangers)
        findings.refuse(::nameOf(variable) + " links " + id +
                        ", which is none of its atoms: link atoms of its own.");
}

// A numbered condition with an atom tells it, so the atom must settle the condition in turn.
void LinkCheck::checkWayBack(s_Condition const& condition) {
    if (condition.atom == nullptr || condition.kind == COND_ATOM ||
        told.count(condition.atom->id) != 0)
        return;
    if (linksOf(*condition.atom).count(positionIn(rt.condi, &condition)) == 0)
        refuseAtom(*condition.atom, "does not lead back to its condition " +
                                        std::to_string(positionIn(rt.condi, &condition)) +
                                        ": link them with linkAtom.");
}

// Some numbered condition on the atom is led to, which sets all the others on it.
bool LinkCheck::isSet(Atom const& atom) const {
    std::multiset<int> const links = linksOf(atom);
    return std::any_of(links.begin(), links.end(), [&](int number) {
        if (number < 0 || number >= static_cast<int>(rt.condi.size()))
            return false;
        s_Condition const* target = rt.condi[static_cast<std::size_t>(number)];
        return target->kind == COND_ATOM && target->atom == &atom;
    });
}

// A mode that no transition moves may stand for a constant, as long as it agrees with the start.
void LinkCheck::checkFollowing(s_Condition const& condition) {
    if (condition.kind != COND_ATOM || condition.atom == nullptr ||
        told.count(condition.atom->id) != 0 || isSet(*condition.atom))
        return;
    Atom const& atom = *condition.atom;
    if (linksOf(*atom.getStateVar()) == nullptr)
        refuseAtom(atom,
                   "is asked for by a condition, and its variable is neither a mode nor a "
                   "condition variable: ask for an atom of one of these.");
    else if (plant.moving.count(atom.getStateVar()) != 0 || atom.getVarType() == typeCond)
        refuseAtom(atom,
                   "is asked for by a condition and sets none: link it to a numbered "
                   "condition on it.");
    else if ((condition.val != 0) != atom.evalAtom())
        findings.warn(nameOf(&condition) + " is never set and does not agree with how " +
                      atom.getStateVar()->name + " begins: link its atom, or set it.");
}

}  // namespace

void checkLinks(s_runtime const& rt, Holdings const& plant, ConditionNames const& nameOf,
                Findings& findings) {
    LinkCheck check(rt, plant, nameOf, findings);
    for (Comp const* comp : plant.comps)
        for (auto const& variable : comp->getStateVariables())
            check.checkVariable(*variable);
    for (s_Condition const* condition : rt.condi)
        check.checkWayBack(*condition);
    for (auto const& condition : rt.condPool)
        if (nameOf.has(condition.get()))
            check.checkFollowing(*condition);
}

void checkNoLinks(Holdings const& plant, Findings& findings) {
    for (Comp const* comp : plant.comps)
        for (auto const& variable : comp->getStateVariables())
            for (Atom const* atom : variable->getAtomLinks())
                if (atom->bridged || !linksOf(*atom).empty())
                    findings.refuse(nameOf(*atom) +
                                    " leads to a condition in a plant without a continuous side: "
                                    "take the link out.");
}
