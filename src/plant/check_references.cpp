// The pools and lists of a runtime: every entry is there, stands where its slot says, and every
// reference stays within the runtime. All other checks follow references without asking.
//
// Fields that a record needs may be null here: the check of that record tells it.
#include <algorithm>

#include "plant/findings.h"

namespace {

// The records of a runtime by kind.
struct Pools {
    explicit Pools(s_runtime const& rt) {
        gather(rt.dico);
        gather(rt.influ);
        gather(rt.cG);
        gather(rt.gvPool);
        gather(rt.exprPool);
        gather(rt.condPool);
    }
    template <typename Record>
    void gather(std::vector<std::unique_ptr<Record>> const& pool) {
        for (auto const& record : pool)
            records.insert(record.get());
    }
    bool holds(void const* record) const { return records.count(record) != 0; }
    bool nullOrHolds(void const* record) const { return record == nullptr || holds(record); }

    std::unordered_set<void const*> records;
};

std::string place(char const* list, std::size_t i) {
    return "Entry " + std::to_string(i) + " of " + list;
}

template <typename Record>
void checkPool(char const* name, std::vector<std::unique_ptr<Record>> const& pool,
               Findings& findings) {
    for (std::size_t i = 0; i < pool.size(); ++i)
        if (pool[i] == nullptr)
            findings.refuse(place(name, i) + " is null: put the record in, or leave it out.");
        else if (pool[i]->slot != static_cast<int>(i))
            findings.refuse(place(name, i) + " has the slot " + std::to_string(pool[i]->slot) +
                            ": arrange the pool.");
}

void checkPools(s_runtime const& rt, Findings& findings) {
    checkPool("dico", rt.dico, findings);
    checkPool("influ", rt.influ, findings);
    checkPool("cG", rt.cG, findings);
    checkPool("gvPool", rt.gvPool, findings);
    checkPool("exprPool", rt.exprPool, findings);
    checkPool("condPool", rt.condPool, findings);
}

// ---- Lists ----

template <typename Record>
void checkList(char const* name, std::vector<Record*> const& list, Pools const& pools,
               Findings& findings) {
    for (std::size_t i = 0; i < list.size(); ++i)
        if (!pools.holds(list[i]))
            findings.refuse(place(name, i) + " is " +
                            (list[i] == nullptr ? "null" : "of another runtime") +
                            ": name a record of this one.");
}

void checkAllLists(s_runtime const& rt, Pools const& pools, Findings& findings) {
    checkList("input", rt.input, pools, findings);
    checkList("display", rt.display, pools, findings);
    checkList("measure", rt.measure, pools, findings);
    checkList("temporal", rt.temporal, pools, findings);
    checkList("untemporal", rt.untemporal, pools, findings);
    checkList("gV", rt.gV, pools, findings);
    checkList("gC", rt.gC, pools, findings);
    checkList("aC", rt.aC, pools, findings);
    checkList("mapExprs", rt.mapExprs, pools, findings);
    checkList("condi", rt.condi, pools, findings);
    for (std::size_t i = 0; i < rt.init.size(); ++i)
        if (!pools.holds(rt.init[i].var))
            findings.refuse(place("init", i) +
                            " names no variable of this runtime: name the one that it is for.");
}

// ---- Fields ----

void checkFields(s_runtime const& rt, Pools const& pools, Findings& findings) {
    auto const within = [&](std::string const& owner, std::initializer_list<void const*> fields) {
        for (void const* field : fields)
            if (!pools.nullOrHolds(field))
                findings.refuse(owner +
                                " refers to a record of another runtime: use those of its own.");
    };
    for (auto const& variable : rt.dico)
        within(nameOf(*variable), {variable->graph});
    for (auto const& influence : rt.influ)
        within(nameOf(*influence), {influence->cause, influence->effect, influence->cond});
    for (auto const& gvar : rt.gvPool)
        within(place("gvPool", static_cast<std::size_t>(gvar->slot)), {gvar->var});
    for (auto const& expr : rt.exprPool)
        within(place("exprPool", static_cast<std::size_t>(expr->slot)),
               {expr->gvar, expr->left, expr->right});
    for (auto const& condition : rt.condPool)
        within(
            place("condPool", static_cast<std::size_t>(condition->slot)),
            {condition->left, condition->right, condition->var, condition->var2, condition->expr});
}

void checkGraphFields(s_runtime const& rt, Pools const& pools, Findings& findings) {
    for (auto const& node : rt.cG)
        for (auto const* list : {&node->causes, &node->effects})
            for (s_Influence const* influence : *list)
                if (!pools.nullOrHolds(influence))
                    findings.refuse(place("cG", static_cast<std::size_t>(node->slot)) +
                                    " refers to an influence of another runtime: use those of its "
                                    "own.");
}

void checkAtoms(s_runtime const& rt, Holdings const& plant, Findings& findings) {
    for (auto const& condition : rt.condPool)
        if (condition->atom != nullptr && !plant.holds(condition->atom))
            findings.refuse(place("condPool", static_cast<std::size_t>(condition->slot)) +
                            " names an atom of no component: use the plant's own atoms.");
}

// ---- Records that hold themselves ----

enum Visit { FRESH, OPEN, DONE };

// Some record below *record* is *record* again.
template <typename Record>
bool holdsItself(Record const* record, std::vector<Visit>& visits) {
    if (record == nullptr)
        return false;
    Visit& visit = visits[static_cast<std::size_t>(record->slot)];
    if (visit != FRESH)
        return visit == OPEN;
    visit = OPEN;
    bool const found = holdsItself(record->left, visits) || holdsItself(record->right, visits);
    visits[static_cast<std::size_t>(record->slot)] = DONE;
    return found;
}

template <typename Record>
void checkNesting(char const* name, std::vector<std::unique_ptr<Record>> const& pool,
                  Findings& findings) {
    std::vector<Visit> visits(pool.size(), FRESH);
    for (auto const& record : pool)
        if (holdsItself(record.get(), visits))
            findings.refuse(place(name, static_cast<std::size_t>(record->slot)) +
                            " is an operand of itself: give it other operands.");
}

}  // namespace

bool checkReferences(s_runtime const& rt, Holdings const& plant, Findings& findings) {
    std::size_t const before = findings.list.size();
    auto const unbroken = [&] { return findings.list.size() == before; };
    checkPools(rt, findings);
    if (!unbroken())
        return false;
    Pools const pools(rt);
    checkAllLists(rt, pools, findings);
    checkFields(rt, pools, findings);
    checkGraphFields(rt, pools, findings);
    checkAtoms(rt, plant, findings);
    if (!unbroken())
        return false;
    checkNesting("exprPool", rt.exprPool, findings);
    checkNesting("condPool", rt.condPool, findings);
    return unbroken();
}
