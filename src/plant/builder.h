// Builds the continuous side of a plant, and its links to the discrete side, from references alone.
//
// Every component opens its PlantPart and declares its records there, naming other records by
// pointer. Nothing is numbered by hand. When all are declared, PlantBuilder::finish puts the
// records in order and computes every number and every list that follows from the declarations:
//
//   dico, influ, aC, gV   part by part, in the order of declaration
//   cG                    a node per variable with causes or effects, in the order of dico; the
//                         influence that was declared last stands first
//   condi                 part by part: variable by variable the conditions linked to its atoms,
//                         in the order of the atoms, each after those operands that are declared
//                         in the part; then the others of the part, in the order of declaration
//   condMap, bridged      from the links
//   varConds              the linked conditions that compare the variable, in the order of condi
//   acIdx, gcIdx          the places of constraints
//   atomRef               the number of a condition in its part, from 1; 0 for one on an atom
//   histories             the window, and the longest delay at which the variable is read
//   condHisto             as far as the fault isolation looks back, from any measure downstream,
//                         unless a length is given
//
// The order in which parts are opened decides the order of causes and effects alone; every other
// order is that of the parts given to `finish`.
//
// The builder judges nothing: what is left out stays out, and checkPlant tells it.
#pragma once

#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "continuous/model_parts.h"
#include "model/Comprt.h"

class PlantBuilder;

// What an influence may say beside its cause and effect.
struct InfluenceOptions {
    int delay = 0;                        // in cycles
    std::optional<int> condHistoLn = {};  // past values of the condition; computed without
    int useOpti = 0;                      // the bound search may sharpen it
};

// The records of one component, in the order of their declaration. Belongs to its builder.
class PlantPart {
public:
    PlantPart(PlantBuilder& plant, Comp& comp);

    // Named after the component and *suffix*.
    s_Variable* parameter(std::string const& suffix, double value);
    s_Variable* variable(std::string const& suffix);
    void initial(s_Variable* variable, s_Objet const& value);

    // The place of *variable* in the constraint network.
    s_GVar* constrained(s_Variable* variable);
    // The constraints: the variable is below the threshold; it is at the threshold or above.
    s_Expr* below(s_GVar* gvar, double threshold);
    s_Expr* from(s_GVar* gvar, double threshold);
    // The same for a threshold that belongs to the lower side.
    s_Expr* upTo(s_GVar* gvar, double threshold);
    s_Expr* above(s_GVar* gvar, double threshold);
    // A part of global constraints that has a name: *number* is its own.
    s_GVar* intermediate(int number);

    // Declared conditions have a number of their own.
    s_Condition* onAtom(Atom* atom);
    s_Condition* compare(relation op, s_Expr* constraint);
    s_Condition* constant(bool holds);
    // Relations of a variable to a value, or to *var2* when that is no null.
    s_Condition* relate(s_Variable* variable, relation op, s_Objet const& value, s_Variable* var2);
    s_Condition* combine(conditionKind kind, s_Condition* left, s_Condition* right);
    // An or whose operands are other components': see PlantBuilder::setOperands.
    s_Condition* openOr() { return combine(COND_OR, nullptr, nullptr); }
    // One of both atoms holds. The operands are records of this condition alone, without numbers.
    s_Condition* either(Atom* left, Atom* right);

    s_Influence* influence(std::string const& nom, influType type, s_Variable* cause,
                           s_Variable* effect, s_Condition* cond, s_Objet const& gain,
                           InfluenceOptions const& options = {});

private:
    friend class PlantBuilder;
    s_Condition* declare(s_Condition* condition);
    s_Expr* within(s_GVar* gvar, double threshold, s_Objet const& space);

    PlantBuilder& plant;
    Comp& comp;
    std::vector<s_Variable*> variables;
    std::vector<s_Influence*> influences;
    std::vector<s_GVar*> gvars;
    std::vector<s_Expr*> constraints;
    std::vector<s_Condition*> conditions;  // the declared ones
};

class PlantBuilder {
public:
    // Builds into *rt*, which outlives the builder. *window* is what the runtime can be moved back
    // by, in cycles.
    PlantBuilder(s_runtime& rt, std::string const& name, double Ts, int window);
    PlantBuilder(PlantBuilder const&) = delete;
    PlantBuilder& operator=(PlantBuilder const&) = delete;

    // Opens the part of a component; valid as long as the builder is.
    PlantPart& part(Comp& comp);

    // The atom holds exactly when the condition does.
    void linkAtom(Atom* atom, s_Condition* condition);
    void setOperands(s_Condition* condition, s_Condition* left, s_Condition* right);
    // A constraint that holds in every cycle: *expr*, whose gvar is what it constrains.
    void globalConstraint(s_Expr* expr);

    // Computes everything that follows from the declarations, for the parts of *order*, which names
    // every component that opened one. To be called once, after the lists of variables are set.
    void finish(std::vector<Comp const*> const& order);

private:
    friend class PlantPart;
    struct Link {
        Atom* atom;
        s_Condition* condition;
    };

    std::vector<PlantPart const*> partsInOrder(std::vector<Comp const*> const& order) const;
    void makeGraph(std::vector<s_Variable*> const& variables);
    void arrangeParts(std::vector<PlantPart const*> const& order);
    std::vector<s_Condition*> numberedOf(PlantPart const& part) const;
    void numberConditions(std::vector<PlantPart const*> const& order);
    void linkAtoms();
    void lengthenHistories();
    void lengthenConditionHistories();

    s_runtime& rt;
    std::deque<PlantPart> parts;
    std::vector<Link> links;
    std::vector<s_Influence*> forgetful;  // their memory of the condition is to be computed
};
