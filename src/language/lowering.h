// What the parts of the lowering share; see lower.h.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "language/flat.h"
#include "model/Plant.h"
#include "plant/builder.h"

class Scheduler;
class StateVar;

class Lowering {
public:
    Lowering(FlatPlant const& flat, Scheduler& scheduler);
    void run();

private:
    // Of one component: what the flat plant says of it, by place, and what was made.
    struct Own {
        std::vector<int> quantities, choices, influences, moves, clauses;
        Comp* comp = nullptr;
        PlantPart* part = nullptr;
        std::map<std::string, s_Condition*> conditions;  // by what they say
    };

    void makeComponent(std::size_t i);
    void makeQuantity(Own& of, QuantityRef reference);
    void makeChoice(Own& of, ChoiceRef reference);
    Atom* atomOf(FlatAtom const& atom) const;
    void makeInfluence(Own& of, int number);
    void makeStarts(Own& of);
    void makeMove(Own& of, FlatMove const& from);
    void makeClauses();
    void makeClausesOf(Own const& of, bool between);
    void makeNeighbours();
    void makeLists();

    // ---- Conditions (lower_conditions.cpp) ----
    void makeConditions(std::size_t i);
    void makeRegion(Own& of, ChoiceRef reference);
    s_Condition* spaceCondition(PlantPart& part, s_GVar* gvar, FlatSpace const& space);
    s_Condition* linkedCondition(FlatAtom const& atom) const;
    // Null for an atom whose condition is not there yet: to be awaited.
    s_Condition* conditionOf(Own& of, FlatCondition const& from);
    s_Condition* made(Own& of, FlatCondition const& from);
    s_Condition* grouped(Own& of, conditionKind kind, std::vector<FlatCondition> const& parts,
                         std::size_t begin, std::size_t end, bool isTop);
    s_Condition* operand(Own& of, FlatCondition const& from);
    bool isOwnMode(Own const& of, FlatCondition const& from) const;
    void awaitOperand(s_Condition** place, FlatCondition const& from);
    void await(s_Condition** place, FlatAtom const& atom) { awaited.push_back({place, atom}); }

    // ---- Constraints (lower_constraints.cpp) ----
    s_GVar* gvarOf(QuantityRef reference);
    void makeConstraints();
    s_Expr* expressionOf(FlatExpression const& from);
    s_Expr* leaf(s_GVar* gvar);

    FlatPlant const& flat;
    Scheduler& scheduler;
    Plant& plant;
    std::shared_ptr<s_runtime> runtime;
    s_runtime& rt;
    PlantBuilder builder;
    std::vector<Own> own;
    std::vector<s_Variable*> variables;
    std::vector<StateVar*> choices;
    std::vector<std::vector<s_Condition*>> linked;  // by choice and value
    std::vector<s_GVar*> gvars;                     // by quantity; null until one is needed
    std::vector<s_GVar*> defined;                   // of parts of constraints
    std::vector<std::pair<s_Condition**, FlatAtom>> awaited;
};
