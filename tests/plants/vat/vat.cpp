// A vat that fills up to a threshold, dumps, drains and fills again. It has what the reference
// model lacks: inputs, conditions of every kind and relation, global constraints over every
// operation, and mapping functions with guards.
//
//   level   x(k) = x(k-1) + [0.9, 1.1] in(k-1)     while filling
//           x(k) = x(k-1) + [-1.1, -0.9] 1.5       while draining
//   lag     z(k) = a z(k-1) + (1 - a) 0.5 x(k-1),  a = exp(-3 / [3, 6])
//   float   y(k) = x(k) + [-0.2, 0.2], measured
//   lamps   the sum of 2^i over the conditions i that hold for certain one cycle earlier
//   gauged  g(k) = gauge(k) + [-2.5, 2.5], a coarse reading that comes in as an input
// The constraints tie the level to the coarse reading, and seven variables, known only roughly by
// themselves, to level and lag by + - * / ** and the sign.
// A vat of 20 or more starts draining, and half of its level above 10 is gone at once; below 10 it
// starts to fill.
#include "generated/vat/vat.h"

#include <cmath>

#include "continuous/model_parts.h"
#include "continuous/sorn-runt.h"
#include "model/CommandVar.h"
#include "model/Comprt.h"
#include "model/CondVarrt.h"
#include "model/ModeVarrt.h"
#include "model/exclusiveChoice.h"
#include "model/labels.h"
#include "model/transitionParts.h"
#include "reasoning/Scheduler.h"
#include "run/compiled_model.h"

namespace {

constexpr int window = 40;

s_Objet closed(double inf, double sup) {
    return makeRange(inf, sup, 1, 1);
}

// ---- Expressions ----

s_Expr* leaf(s_runtime& rt, s_GVar* gvar) {
    auto expr = std::make_unique<s_Expr>();
    expr->op = gvar->kind == GV_CONST ? EXPR_CONST : EXPR_VAR;
    expr->gvar = gvar;
    return adoptExpr(rt, std::move(expr));
}

s_Expr* constant(s_runtime& rt, s_Objet const& value) {
    return leaf(rt, mkConstant(rt, value));
}

s_Expr* combined(s_runtime& rt, expressionOp op, s_Expr* left, s_Expr* right) {
    auto expr = std::make_unique<s_Expr>();
    expr->op = op;
    expr->left = left;
    expr->right = right;
    return adoptExpr(rt, std::move(expr));
}

// ---- The model ----

class Vat {
public:
    Vat(Plant& plant, Comp* comp, s_runtime& rt) : plant(plant), comp(comp), rt(rt) {
        addDiscreteSide();
        addVariables();
        addConditions();
        addCausalGraph();
        addConstraints();
        addMappings();
        rt.display = {x,        z,      y,        sum,  difference, product,
                      quotient, square, opposite, rest, lamps,      mark};
        rt.input = {in, gauge};
        rt.measure = {y};
        rt.temporal = {x, z, mark};
        rt.untemporal = {y,       gauged,   lamps,  sum,      difference,
                         product, quotient, square, opposite, rest};
        sizeArrays(rt);
        rt.name = "vat";
        rt.Ts = 1.0;
        rt.twc = window;
    }

private:
    s_Variable* variable(char const* name) { return mkVariable(rt, name, window); }

    void addDiscreteSide();
    void addVariables();
    void addSpaces();
    s_Condition* relationTo(relation op, s_Objet const& value);
    s_Condition* relationToLag(relation op);
    s_Condition* add(s_Condition* condition);
    void addConditions();
    void addLamps();
    s_Influence* influence(influType type, s_Variable* cause, s_Variable* effect,
                           s_Condition* condition, s_Objet const& gain);
    void roughly(s_Variable* effect, double inf);
    void addCausalGraph();
    s_GVar* constrained(s_Variable* variable, s_Objet const& first,
                        std::vector<int> const& dependents);
    s_GVar* dependingOn(s_GVar* gvar, std::vector<int> const& dependents);
    void constrain(s_GVar* gvar, s_Expr* right);
    void addConstraints();
    void map(Transition* transition, s_Condition* guard, s_Variable* target, s_Expr* value);
    void addMappings();

    Plant& plant;
    Comp* comp;
    s_runtime& rt;
    Atom *filling, *draining, *low, *mid, *high;
    CondVar* space;
    ModeVar* mode;
    Transition *toDraining, *toFilling, *byCommand;
    s_Variable *in, *gauge, *gauged, *x, *z, *y, *one, *pull, *mark, *lamps;
    s_Variable *sum, *difference, *product, *quotient, *square, *opposite, *rest;
    s_GVar* gx;
    s_Condition *isFilling, *isDraining, *isHigh, *isLow;
    std::vector<s_Condition*> lampConditions;
    std::vector<s_Influence*> fromOne;
};

void Vat::addDiscreteSide() {
    auto* command = comp->addStateVar(std::make_unique<CommandVar>(
        "vat.cmd", std::set<std::string>{"none", "dump"}, "none", comp));
    comp->newAtom("vat_cmd_none", command, "none");
    Atom* dump = comp->newAtom("vat_cmd_dump", command, "dump");
    comp->commands = {command};

    space = comp->addStateVar(std::make_unique<CondVar>(
        "vat.space", std::set<std::string>{"low", "mid", "high"}, "low", comp));
    low = comp->newAtom("vat_space_low", space, "low");
    mid = comp->newAtom("vat_space_mid", space, "mid");
    high = comp->newAtom("vat_space_high", space, "high");

    mode = comp->addStateVar(std::make_unique<ModeVar>(
        "vat.mode", std::set<std::string>{"filling", "draining"}, "filling", comp));
    filling = comp->newAtom("vat_mode_filling", mode, "filling");
    draining = comp->newAtom("vat_mode_draining", mode, "draining");

    auto const add = [this](std::vector<std::pair<Atom*, bool>> const& guard, Atom* to, bool idle) {
        return comp->addTransitionToC(
            mkTransition(guard, "and", to, transNominal, idle ? 0.999 : 0.99, idle));
    };
    add({{filling, true}}, filling, true);
    add({{draining, true}}, draining, true);
    toDraining = add({{filling, true}, {high, true}}, draining, false);
    toFilling = add({{draining, true}, {low, true}}, filling, false);
    byCommand = add({{dump, true}, {filling, true}}, draining, false);
    addExclusiveChoice(plant, command);
    addExclusiveChoice(plant, space);
    addExclusiveChoice(plant, mode);
}

void Vat::addVariables() {
    in = variable("vat.in");
    gauge = variable("vat.gauge");
    gauged = variable("vat.gauged");
    x = variable("vat.level");
    z = variable("vat.lag");
    y = variable("vat.float");
    lamps = variable("vat.lamps");
    mark = variable("vat.mark");
    sum = variable("vat.sum");
    difference = variable("vat.difference");
    product = variable("vat.product");
    quotient = variable("vat.quotient");
    square = variable("vat.square");
    opposite = variable("vat.opposite");
    rest = variable("vat.rest");
    one = mkParameter(rt, "vat.one", 1.0, 0);
    pull = mkParameter(rt, "vat.pull", vat::drain, 0);
    x->domain = closed(0.0, 40.0);
    rt.init = {{x, closed(vat::firstLow, vat::firstHigh)},
               {z, makeReal(vat::firstLag)},
               {mark, makeReal(0.0)}};
}

// ---- Conditions ----

s_Condition* Vat::add(s_Condition* condition) {
    rt.condi.push_back(condition);
    return condition;
}

s_Condition* Vat::relationTo(relation op, s_Objet const& value) {
    auto condition = mkCond();
    condition->kind = COND_REL;
    condition->var = x;
    condition->op = op;
    condition->value = value;
    return add(adoptCondition(rt, std::move(condition)));
}

s_Condition* Vat::relationToLag(relation op) {
    s_Condition* condition = relationTo(op, *objZero);
    condition->value.reset();
    condition->var2 = z;
    return condition;
}

// The three spaces of the level: the constraints on it, and the conditions that bridge to the
// atoms.
void Vat::addSpaces() {
    gx = mkConstraintVar(rt, x, makeReal(0.0));
    gx->acIdx = {4, 0, 1, 2, 3};
    s_Objet const below = makeRange(-DBL_MAX, 0.0, 1, 0), from = makeRange(0.0, DBL_MAX, 1, 1);
    rt.aC = {mkSpace(rt, gx, vat::lowEnd, below), mkSpace(rt, gx, vat::lowEnd, from),
             mkSpace(rt, gx, vat::highStart, below), mkSpace(rt, gx, vat::highStart, from)};
    isLow = add(mkExprCond(rt, x, REL_LT, rt.aC[0], 0, low, 1));
    s_Condition* fromLow = add(mkExprCond(rt, x, REL_GE, rt.aC[1], 1, nullptr, 2));
    s_Condition* belowHigh = add(mkExprCond(rt, x, REL_LT, rt.aC[2], 2, nullptr, 3));
    s_Condition* isMid = add(mkBinaryCond(rt, COND_AND, fromLow, belowHigh, 4));
    isMid->atom = mid;
    isHigh = add(mkExprCond(rt, x, REL_GE, rt.aC[3], 3, high, 5));
    isFilling = add(mkAtomCond(rt, filling, 0));
    isDraining = add(mkAtomCond(rt, draining, 0));
    linkAtom(space, low, 0);
    linkAtom(space, mid, 3);
    linkAtom(space, high, 4);
    linkAtom(mode, filling, 5);
    linkAtom(mode, draining, 6);
    x->varConds = {0, 3, 4};
}

void Vat::addConditions() {
    addSpaces();
    auto const at12 = [this](relation op) { return relationTo(op, makeReal(12.0)); };
    auto always = mkCond();
    always->kind = COND_CONST;
    always->val = 1;
    lampConditions.resize(vat::LAMPS);
    auto& lamp = lampConditions;
    lamp[vat::LAMP_EQ_4] = relationTo(REL_EQ, makeReal(4.0));
    lamp[vat::LAMP_DIFF_15] = relationTo(REL_DIFF, makeReal(15.0));
    lamp[vat::LAMP_LE_12] = at12(REL_LE);
    lamp[vat::LAMP_LT_12] = at12(REL_LT);
    lamp[vat::LAMP_GE_12] = at12(REL_GE);
    lamp[vat::LAMP_GT_12] = at12(REL_GT);
    lamp[vat::LAMP_IN_8_16] = relationTo(REL_IN, makeRange(8.0, 16.0, 0, 0));
    lamp[vat::LAMP_LT_LAG] = relationToLag(REL_LT);
    lamp[vat::LAMP_GE_LAG] = relationToLag(REL_GE);
    lamp[vat::LAMP_DIFF_LAG] = relationToLag(REL_DIFF);
    lamp[vat::LAMP_NOT_LT_12] = add(mkBinaryCond(rt, COND_NOT, lamp[vat::LAMP_LT_12], nullptr, 0));
    lamp[vat::LAMP_LT_OR_GE_12] =
        add(mkBinaryCond(rt, COND_OR, lamp[vat::LAMP_LT_12], lamp[vat::LAMP_GE_12], 0));
    lamp[vat::LAMP_GE_12_AND_FILLING] =
        add(mkBinaryCond(rt, COND_AND, lamp[vat::LAMP_GE_12], isFilling, 0));
    lamp[vat::LAMP_FILLING] = isFilling;
    lamp[vat::LAMP_CONST] = add(adoptCondition(rt, std::move(always)));
    lamp[vat::LAMP_HIGH] = isHigh;
}

// ---- Influences ----

s_Influence* Vat::influence(influType type, s_Variable* cause, s_Variable* effect,
                            s_Condition* condition, s_Objet const& gain) {
    std::string name = "V.i";
    name += std::to_string(rt.influ.size());
    s_Influence* made = mkInfluence(rt, name, type, cause, effect, condition, 1, gain, 0, 0);
    comp->addInfluence(made);
    if (cause == one)
        fromOne.push_back(made);
    return made;
}

// By itself the variable is known only to lie between *inf* and 1000.
void Vat::roughly(s_Variable* effect, double inf) {
    mkGraph(rt, effect, INF_STATIC,
            {influence(INF_STATIC, one, effect, nullptr, closed(inf, 1000.0))}, {});
}

void Vat::addLamps() {
    std::vector<s_Influence*> shows;
    for (int i = 0; i < vat::LAMPS; ++i)
        shows.push_back(influence(INF_STATIC, one, lamps,
                                  lampConditions[static_cast<std::size_t>(i)],
                                  makeReal(std::ldexp(1.0, i))));
    mkGraph(rt, lamps, INF_STATIC, shows, {});
}

void Vat::addCausalGraph() {
    s_Influence* fills =
        influence(INF_INTEGRAL, in, x, isFilling, closed(vat::fillLow, vat::fillHigh));
    s_Influence* drains =
        influence(INF_INTEGRAL, pull, x, isDraining, closed(-vat::fillHigh, -vat::fillLow));
    s_Influence* lags = influence(INF_DYNAMIC, x, z, nullptr, makeReal(vat::lagGain));
    lags->respTime = closed(vat::responseLow, vat::responseHigh);
    s_Influence* floats = influence(INF_STATIC, x, y, nullptr, makeReal(1.0));
    s_Influence* errs =
        influence(INF_STATIC, one, y, nullptr, closed(-vat::floatError, vat::floatError));
    s_Influence* keeps = influence(INF_INTEGRAL, one, mark, nullptr, makeReal(0.0));
    s_Influence* reads = influence(INF_STATIC, gauge, gauged, nullptr, makeReal(1.0));
    s_Influence* coarse =
        influence(INF_STATIC, one, gauged, nullptr, closed(-vat::gaugeError, vat::gaugeError));
    mkGraph(rt, in, INF_STATIC, {}, {fills});
    mkGraph(rt, gauge, INF_STATIC, {}, {reads});
    mkGraph(rt, gauged, INF_STATIC, {reads, coarse}, {});
    mkGraph(rt, pull, INF_STATIC, {}, {drains});
    mkGraph(rt, x, INF_INTEGRAL, {fills, drains}, {lags, floats});
    mkGraph(rt, z, INF_DYNAMIC, {lags}, {});
    mkGraph(rt, y, INF_STATIC, {floats, errs}, {});
    mkGraph(rt, mark, INF_INTEGRAL, {keeps}, {});
    addLamps();
    for (s_Variable* free : {sum, difference, opposite, rest})
        roughly(free, -1000.0);
    for (s_Variable* free : {product, quotient, square})
        roughly(free, 0.0);
    mkGraph(rt, one, INF_STATIC, {}, fromOne);
}

// ---- Constraints ----

// *first*: what the variable starts with. A split hands it back to every variable of a constraint,
// also to those without spaces. *dependents*: the constraints, by number, that depend on it.
s_GVar* Vat::constrained(s_Variable* variable, s_Objet const& first,
                         std::vector<int> const& dependents) {
    return dependingOn(mkConstraintVar(rt, variable, first), dependents);
}

s_GVar* Vat::dependingOn(s_GVar* gvar, std::vector<int> const& dependents) {
    gvar->gcIdx = {static_cast<int>(dependents.size())};
    gvar->gcIdx.insert(gvar->gcIdx.end(), dependents.begin(), dependents.end());
    rt.gV.push_back(gvar);
    return gvar;
}

void Vat::constrain(s_GVar* gvar, s_Expr* right) {
    right->gvar = gvar;
    rt.gC.push_back(right);
}

void Vat::addConstraints() {
    s_Objet const rough = closed(-1000.0, 1000.0), positive = closed(0.0, 1000.0);
    dependingOn(gx, {1, 2, 3, 4, 5});
    s_GVar* gz = constrained(z, makeReal(vat::firstLag), {1, 2, 3, 4, 7, 9});
    s_GVar* gGauged = constrained(gauged, rough, {0});
    s_GVar* gSum = constrained(sum, rough, {6, 8, 9});
    s_GVar* after = mkConstant(rt, *objMax);
    after->kind = GV_INTERMEDIATE;
    after->number = 1;
    dependingOn(after, {8});
    auto const level = [this] { return leaf(rt, gx); };
    auto const lag = [this, gz] { return leaf(rt, gz); };
    constrain(gx, combined(rt, EXPR_ADD, leaf(rt, gGauged), constant(rt, *objZero)));
    constrain(gSum, combined(rt, EXPR_ADD, level(), lag()));
    constrain(constrained(difference, rough, {}), combined(rt, EXPR_SUB, level(), lag()));
    constrain(constrained(product, positive, {}), combined(rt, EXPR_MUL, level(), lag()));
    constrain(constrained(quotient, positive, {}), combined(rt, EXPR_DIV, level(), lag()));
    // The right operand to the power of the left one.
    constrain(constrained(square, positive, {}),
              combined(rt, EXPR_POW, constant(rt, makeReal(2.0)), level()));
    constrain(constrained(opposite, rough, {}), combined(rt, EXPR_NEG, leaf(rt, gSum), nullptr));
    constrain(after, combined(rt, EXPR_ADD, lag(), constant(rt, *objUn)));
    constrain(constrained(rest, rough, {}),
              combined(rt, EXPR_SUB, leaf(rt, gSum), leaf(rt, after)));
    constrain(gx, combined(rt, EXPR_SUB, leaf(rt, gSum), lag()));
}

// ---- Mapping functions ----

void Vat::map(Transition* transition, s_Condition* guard, s_Variable* target, s_Expr* value) {
    auto function = std::make_unique<MapFunc>();
    function->guard = guard;
    function->vars.push_back({target->nom, static_cast<int>(rt.mapExprs.size())});
    rt.mapExprs.push_back(value);
    transition->mapFuncs.push_back(std::move(function));
}

// A dump by itself is mapped under a guard that holds for every high level: one at the threshold
// would not, since the piece above a threshold is open there. The mark's guard never holds.
void Vat::addMappings() {
    s_Condition* wellFilled = relationTo(REL_GE, makeReal(vat::guardOfDump));
    s_Condition* atRest = relationTo(REL_LT, makeReal(0.0));
    for (Transition* starts : {toDraining, byCommand}) {
        s_Expr* half =
            combined(rt, EXPR_MUL, leaf(rt, gx), constant(rt, makeReal(vat::dumpFactor)));
        map(starts, starts == toDraining ? wellFilled : nullptr, x,
            combined(rt, EXPR_ADD, half, constant(rt, makeReal(vat::dumpRest))));
        map(starts, atRest, mark, constant(rt, makeReal(vat::markOfGuard)));
    }
    map(toFilling, nullptr, x, leaf(rt, gx));
}

void startinit(Scheduler* scheduler) {
    auto runtime = std::make_shared<s_runtime>();
    Vat(scheduler->building(), scheduler->addComp(std::make_unique<Comp>("vat")), *runtime);
    scheduler->building().tavro_rt = std::move(runtime);
}

}  // namespace

extern CompiledModel const vat_model{"vat", startinit};
