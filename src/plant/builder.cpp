// Declaring records, and what is computed from the declarations of components.
#include "plant/builder.h"

#include <algorithm>
#include <cassert>
#include <cfloat>

#include "continuous/sorn-runt.h"
#include "model/CondVarrt.h"
#include "model/ModeVarrt.h"
#include "model/transitionParts.h"
#include "plant/condition_histories.h"
#include "plant/numbering.h"

namespace {

s_Objet const belowZero = makeRange(-DBL_MAX, 0.0, 1, 0);
s_Objet const fromZero = makeRange(0.0, DBL_MAX, 1, 1);
s_Objet const upToZero = makeRange(-DBL_MAX, 0.0, 1, 1);
s_Objet const aboveZero = makeRange(0.0, DBL_MAX, 0, 1);

// Until `finish`, for what it computes.
constexpr int notYet = 0;

bool isIn(std::vector<s_Condition*> const& conditions, s_Condition const* condition) {
    return std::find(conditions.begin(), conditions.end(), condition) != conditions.end();
}

}  // namespace

// ---- Declaring ----

PlantPart::PlantPart(PlantBuilder& plant, Comp& comp) : plant(plant), comp(comp) {}

s_Variable* PlantPart::parameter(std::string const& suffix, double value) {
    variables.push_back(mkParameter(plant.rt, comp.name + "." + suffix, value, plant.rt.twc));
    return variables.back();
}

s_Variable* PlantPart::variable(std::string const& suffix) {
    variables.push_back(mkVariable(plant.rt, comp.name + "." + suffix, plant.rt.twc));
    return variables.back();
}

void PlantPart::initial(s_Variable* variable, s_Objet const& value) {
    plant.rt.init.push_back({variable, value});
}

s_GVar* PlantPart::constrained(s_Variable* variable) {
    gvars.push_back(mkConstraintVar(plant.rt, variable, makeReal(0.0)));
    return gvars.back();
}

s_GVar* PlantPart::intermediate(int number) {
    s_GVar* gvar = mkConstant(plant.rt, *objMax);
    gvar->kind = GV_INTERMEDIATE;
    gvar->number = number;
    gvars.push_back(gvar);
    return gvar;
}

s_Expr* PlantPart::within(s_GVar* gvar, double threshold, s_Objet const& space) {
    constraints.push_back(mkSpace(plant.rt, gvar, threshold, space));
    return constraints.back();
}

s_Expr* PlantPart::below(s_GVar* gvar, double threshold) {
    return within(gvar, threshold, belowZero);
}

s_Expr* PlantPart::from(s_GVar* gvar, double threshold) {
    return within(gvar, threshold, fromZero);
}

s_Expr* PlantPart::upTo(s_GVar* gvar, double threshold) {
    return within(gvar, threshold, upToZero);
}

s_Expr* PlantPart::above(s_GVar* gvar, double threshold) {
    return within(gvar, threshold, aboveZero);
}

s_Condition* PlantPart::declare(s_Condition* condition) {
    conditions.push_back(condition);
    return condition;
}

s_Condition* PlantPart::onAtom(Atom* atom) {
    return declare(mkAtomCond(plant.rt, atom, notYet));
}

s_Condition* PlantPart::compare(relation op, s_Expr* constraint) {
    return declare(
        mkExprCond(plant.rt, constraint->gvar->var, op, constraint, notYet, nullptr, notYet));
}

s_Condition* PlantPart::constant(bool holds) {
    auto condition = mkCond();
    condition->kind = COND_CONST;
    condition->val = holds ? 1 : 0;
    return declare(adoptCondition(plant.rt, std::move(condition)));
}

s_Condition* PlantPart::relate(s_Variable* variable, relation op, s_Objet const& value,
                               s_Variable* var2) {
    auto condition = mkCond();
    condition->kind = COND_REL;
    condition->var = variable;
    condition->op = op;
    if (var2 == nullptr)
        condition->value = value;
    condition->var2 = var2;
    return declare(adoptCondition(plant.rt, std::move(condition)));
}

s_Condition* PlantPart::combine(conditionKind kind, s_Condition* left, s_Condition* right) {
    return declare(mkBinaryCond(plant.rt, kind, left, right, notYet));
}

s_Condition* PlantPart::either(Atom* left, Atom* right) {
    return combine(COND_OR, mkAtomCond(plant.rt, left, notYet),
                   mkAtomCond(plant.rt, right, notYet));
}

s_Influence* PlantPart::influence(std::string const& nom, influType type, s_Variable* cause,
                                  s_Variable* effect, s_Condition* cond, s_Objet const& gain,
                                  InfluenceOptions const& options) {
    influences.push_back(mkInfluence(plant.rt, nom, type, cause, effect, cond,
                                     options.condHistoLn.value_or(1), gain, options.delay,
                                     options.useOpti));
    if (!options.condHistoLn)
        plant.forgetful.push_back(influences.back());
    comp.addInfluence(influences.back());
    return influences.back();
}

PlantBuilder::PlantBuilder(s_runtime& rt, std::string const& name, double Ts, int window) : rt(rt) {
    rt.name = name;
    rt.Ts = Ts;
    rt.twc = window;
}

PlantPart& PlantBuilder::part(Comp& comp) {
    return parts.emplace_back(*this, comp);
}

void PlantBuilder::linkAtom(Atom* atom, s_Condition* condition) {
    condition->atom = atom;
    links.push_back({atom, condition});
}

void PlantBuilder::setOperands(s_Condition* condition, s_Condition* left, s_Condition* right) {
    condition->left = left;
    condition->right = right;
}

void PlantBuilder::globalConstraint(s_Expr* expr) {
    rt.gC.push_back(expr);
}

// ---- Computing ----

std::vector<PlantPart const*> PlantBuilder::partsInOrder(
    std::vector<Comp const*> const& order) const {
    std::vector<PlantPart const*> found;
    for (Comp const* comp : order)
        for (PlantPart const& part : parts)
            if (&part.comp == comp)
                found.push_back(&part);
    assert(found.size() == parts.size());
    return found;
}

// Before the influences are arranged, since their order of declaration counts.
void PlantBuilder::makeGraph(std::vector<s_Variable*> const& variables) {
    for (s_Variable* variable : variables) {
        std::vector<s_Influence*> causes, effects;
        for (auto influence = rt.influ.rbegin(); influence != rt.influ.rend(); ++influence) {
            if ((*influence)->effect == variable)
                causes.push_back(influence->get());
            if ((*influence)->cause == variable)
                effects.push_back(influence->get());
        }
        if (!causes.empty() || !effects.empty())
            mkGraph(rt, variable, kindOfCauses(causes), causes, effects);
    }
}

void PlantBuilder::arrangeParts(std::vector<PlantPart const*> const& order) {
    std::vector<s_Variable*> variables;
    std::vector<s_Influence*> influences;
    for (PlantPart const* part : order) {
        variables.insert(variables.end(), part->variables.begin(), part->variables.end());
        influences.insert(influences.end(), part->influences.begin(), part->influences.end());
        rt.gV.insert(rt.gV.end(), part->gvars.begin(), part->gvars.end());
        rt.aC.insert(rt.aC.end(), part->constraints.begin(), part->constraints.end());
    }
    makeGraph(variables);
    arrange(rt.dico, variables);
    arrange(rt.influ, influences);
}

namespace {

// *condition* behind those of its operands that are declared in the part too.
void appendWithOperands(std::vector<s_Condition*>& numbered, std::vector<s_Condition*> const& own,
                        s_Condition* condition) {
    if (condition == nullptr || !isIn(own, condition) || isIn(numbered, condition))
        return;
    appendWithOperands(numbered, own, condition->left);
    appendWithOperands(numbered, own, condition->right);
    numbered.push_back(condition);
}

}  // namespace

std::vector<s_Condition*> PlantBuilder::numberedOf(PlantPart const& part) const {
    std::vector<s_Condition*> numbered;
    for (auto const& variable : part.comp.getStateVariables())
        for (Atom const* atom : variable->getAtomLinks())
            for (Link const& link : links)
                if (link.atom == atom)
                    appendWithOperands(numbered, part.conditions, link.condition);
    for (s_Condition* condition : part.conditions)
        appendWithOperands(numbered, part.conditions, condition);
    return numbered;
}

void PlantBuilder::numberConditions(std::vector<PlantPart const*> const& order) {
    for (PlantPart const* part : order) {
        std::vector<s_Condition*> const numbered = numberedOf(*part);
        rt.condi.insert(rt.condi.end(), numbered.begin(), numbered.end());
        int number = 0;
        for (s_Condition* condition : part->conditions) {
            ++number;
            condition->atomRef = condition->kind == COND_ATOM ? 0 : number;
        }
    }
    for (auto const& condition : rt.condPool)
        if (condition->kind == COND_EXPR)
            condition->acIdx = {positionIn(rt.aC, condition->expr)};
}

void PlantBuilder::linkAtoms() {
    for (auto const& [atom, condition] : links) {
        int const number = positionIn(rt.condi, condition);
        if (atom->getVarType() == typeMode)
            ::linkAtom(static_cast<ModeVar*>(atom->getStateVar()), atom, number);
        else if (atom->getVarType() == typeCond)
            ::linkAtom(static_cast<CondVar*>(atom->getStateVar()), atom, number);
    }
}

// A value read at a delay must still be there after the runtime was moved back by its window.
void PlantBuilder::lengthenHistories() {
    for (auto const& variable : rt.dico) {
        int const length = rt.twc + longestDelayFrom(rt, variable.get());
        variable->histo = History<s_Objet>(length);
        variable->mesHisto = History<s_Objet>(length);
        variable->lowHisto = History<int>(length);
        variable->highHisto = History<int>(length);
    }
}

void PlantBuilder::lengthenConditionHistories() {
    std::vector<int> const asked = askedConditionHistories(rt);
    for (s_Influence* influence : forgetful)
        setConditionHistory(*influence, asked[static_cast<std::size_t>(influence->slot)]);
}

void PlantBuilder::finish(std::vector<Comp const*> const& order) {
    std::vector<PlantPart const*> const ordered = partsInOrder(order);
    arrangeParts(ordered);
    numberConditions(ordered);
    linkAtoms();
    for (auto const& variable : rt.dico)
        variable->varConds = conditionsBounding(rt, variable.get());
    for (s_GVar* gvar : rt.gV) {
        gvar->acIdx = constraintsOn(rt, gvar);
        gvar->gcIdx = constraintsReading(rt, gvar);
    }
    lengthenHistories();
    lengthenConditionHistories();
    sizeArrays(rt);
}
