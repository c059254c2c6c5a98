// The continuous end of the bridge.
#include "continuous/bridge.h"

#include <algorithm>
#include <memory>

namespace {

// The event on that atom, under either sign, or the end.
auto eventOn(s_runtime* rt, Atom const* atom) {
    return std::find_if(rt->bridgeEvents.begin(), rt->bridgeEvents.end(),
                        [atom](auto const& event) { return event.second == atom; });
}

}  // namespace

void addBridgeEvent(s_Condition* c, Atom* atom, bool sign, s_runtime* rt) {
    if (atom == nullptr) {
        c->val = sign ? 1 : 0;  // a condition of the continuous side alone
        return;
    }
    if (eventOn(rt, atom) != rt->bridgeEvents.end())
        return;
    rt->bridgeEvents.insert({sign, atom});
    c->val = sign ? 1 : 0;
}

void removeBridgeEvent(s_Condition* c, Atom const* atom, s_runtime* rt) {
    if (atom == nullptr) {
        c->val = 0;
        return;
    }
    auto const found = eventOn(rt, atom);
    if (found == rt->bridgeEvents.end())
        return;
    rt->bridgeEvents.erase(found);
    c->val = 0;
}

void addBridgeTrans(Transition* transition, s_runtime* rt) {
    rt->bridgeTrans.push_back(transition);
}

void addBridgeCond(Atom* atom, bool sign, s_runtime* rt) {
    rt->bridgeConds.insert({sign, atom});
}

void setRTCondVal(s_runtime* rt, int index, bool value) {
    s_Condition* condition = rt->condi[static_cast<std::size_t>(index)];
    condition->val = value ? 1 : 0;
    if (condition->kind != COND_ATOM || condition->atom == nullptr)
        return;
    for (auto const& other : rt->condPool)
        if (other->kind == COND_ATOM && other->atom == condition->atom)
            other->val = condition->val;
}

namespace {

using AtomSet = std::shared_ptr<std::vector<Atom*>>;

// One condition's walk. Required: a disjunction adds the set that it was given, not a copy, so the
// sets of nested disjunctions are one set, each with the atoms of all.
class ConditionWalk {
public:
    // *set* is the one being filled, or null. Only a leaf with no set, and disjunctions, add sets.
    void parseCondConflicts(s_Condition const* condition, bool sign, AtomSet const& set);
    std::vector<AtomSet> found;

private:
    void parseLeaf(Atom* atom, bool sign, AtomSet const& set);
    void parseDisjunction(s_Condition const* condition, AtomSet const& set);
    void parseConjunction(s_Condition const* condition, AtomSet const& set);
};

// Required: the set that a conjunction passes down is dropped, and so is the copy that a leaf below
// it makes, so that only a disjunction nested under a conjunction yields a set.
void ConditionWalk::parseLeaf(Atom* atom, bool sign, AtomSet const& set) {
    if (set != nullptr && !sign)
        set->push_back(atom);
    else if (set == nullptr)
        found.push_back(std::make_shared<std::vector<Atom*>>(1, atom));
}

void ConditionWalk::parseDisjunction(s_Condition const* condition, AtomSet const& set) {
    AtomSet const target = set != nullptr ? set : std::make_shared<std::vector<Atom*>>();
    parseCondConflicts(condition->left, false, target);
    parseCondConflicts(condition->right, false, target);
    found.push_back(target);
}

void ConditionWalk::parseConjunction(s_Condition const* condition, AtomSet const& set) {
    auto const own = set != nullptr ? std::make_shared<std::vector<Atom*>>(*set)
                                    : std::make_shared<std::vector<Atom*>>();
    parseCondConflicts(condition->left, true, own);
    parseCondConflicts(condition->right, true, own);
}

void ConditionWalk::parseCondConflicts(s_Condition const* condition, bool sign,
                                       AtomSet const& set) {
    switch (condition->kind) {
        case COND_NOT:
            // Required: the sign is not inverted.
            parseCondConflicts(condition->left, sign, set);
            break;
        case COND_OR:
            parseDisjunction(condition, set);
            break;
        case COND_AND:
            parseConjunction(condition, set);
            break;
        case COND_ATOM:
        case COND_EXPR:
            parseLeaf(condition->atom, sign, set);
            break;
        default:
            break;
    }
}

}  // namespace

void addBridgeConflict(s_runtime* rt, s_Condition const* condition,
                       std::vector<s_Condition const*>& existing) {
    if (condition == nullptr ||
        std::find(existing.begin(), existing.end(), condition) != existing.end())
        return;
    if (!rt->bridgeConflicts)
        rt->bridgeConflicts.emplace();
    ConditionWalk walk;
    walk.parseCondConflicts(condition, true, nullptr);
    for (AtomSet const& set : walk.found)
        rt->bridgeConflicts->push_back(*set);
    existing.push_back(condition);
}
