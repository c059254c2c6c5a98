#include "truth/course.h"

#include <algorithm>
#include <cassert>

#include "continuous/sorn-runt.h"

namespace truth {

namespace {

// What is drawn from one seed, apart from each other: a fault does not change a gain.
enum Stream { streamGains = 1, streamFirsts, streamNoises };

double middle(s_Objet const& value) {
    return sn_infOf(value) + 0.5 * (sn_supOf(value) - sn_infOf(value));
}

bool reads(s_Expr const& expr, s_GVar const* gvar) {
    for (s_Expr const* operand : {expr.left, expr.right})
        if (operand != nullptr && (operand->gvar == gvar || reads(*operand, gvar)))
            return true;
    return false;
}

// The constraints of a plant, each definition before what reads it; else as they are told.
std::vector<s_Expr const*> definitionsFirst(s_runtime const& rt) {
    std::vector<s_Expr const*> left(rt.gC.begin(), rt.gC.end()), ordered;
    while (!left.empty()) {
        auto const isReady = [&left](s_Expr const* one) {
            return std::none_of(left.begin(), left.end(), [one](s_Expr const* other) {
                return other->gvar->kind == GV_INTERMEDIATE && reads(*one, other->gvar);
            });
        };
        auto const ready = std::find_if(left.begin(), left.end(), isReady);
        auto const next = ready != left.end() ? ready : left.begin();
        ordered.push_back(*next);
        left.erase(next);
    }
    return ordered;
}

// A dynamic link is sampled as a whole, so that its coefficients belong together.
bool isSampled(s_Influence const& influence) {
    return influence.type == INF_DYNAMIC || influence.type == INF_DYNAMIC2;
}

}  // namespace

Course::Course(s_runtime const& plant, Setting const& setting)
    : plant(plant),
      setting(setting),
      engine(host),
      rt(sn_copyRuntime(&plant, &engine)),
      gains(setting.seed, streamGains),
      firsts(setting.seed, streamFirsts),
      noises(setting.seed, streamNoises),
      courses(plant.dico.size()),
      shares(plant.influ.size()),
      constraints(definitionsFirst(*rt)) {
    settleParameters();
}

double Course::at(int slot, int when) const {
    auto const& course = courses[static_cast<std::size_t>(slot)];
    assert(when < static_cast<int>(course.size()));
    return course[static_cast<std::size_t>(std::max(when, 0))];
}

double& Course::current(int slot) {
    return courses[static_cast<std::size_t>(slot)][static_cast<std::size_t>(time)];
}

double Course::drawn(s_Objet const& value, Dice& dice) {
    if (setting.uncertainty == Uncertainty::midpoint || isReal(value))
        return middle(value);
    return dice.within(sn_infOf(value), sn_supOf(value));
}

s_Objet Course::pointIn(s_Objet const& value) {
    return isValue(value) ? makeReal(drawn(value, gains)) : value;
}

void Course::settleParameters() {
    for (auto const& influence : rt->influ) {
        shares[static_cast<std::size_t>(influence->slot)] =
            setting.uncertainty == Uncertainty::midpoint ? 0.5 : gains.within(0.0, 1.0);
        if (!isSampled(*influence))
            continue;
        for (s_Objet* number : {&influence->gain, &influence->respTime})
            *number = pointIn(*number);
        for (auto* number : {&influence->xi, &influence->w, &influence->n1, &influence->n2,
                             &influence->d0, &influence->d1, &influence->d2})
            if (*number)
                **number = pointIn(**number);
    }
    sn_evalInfluCoefs(rt.get(), rt->Ts);
    for (auto const& influence : rt->influ)
        wide.push_back(influence->b1);
}

// ---- The start ----

void Course::define(s_Variable* variable, double value) {
    variable->old = variable->new_ = makeReal(value);
    variable->defined = 1;
    sn_fillHisto(variable);
}

void Course::drawFirstValues() {
    for (s_InitVar const& initial : rt->init)
        define(initial.var, drawn(initial.value, firsts));
}

// What has no value of its own takes it from its causes, or 0.
void Course::defineTheRest() {
    for (auto const& influence : rt->influ)
        if (!isSampled(*influence))
            influence->b1 = makeReal(gainOf(*influence));
    rt->measure.clear();  // the sensors show what there is
    for (auto const* list : {&rt->temporal, &rt->untemporal})
        for (s_Variable* variable : *list)
            if (!variable->defined)
                sn_compInitVar(rt.get(), variable);
    for (auto const& variable : rt->dico)
        if (!variable->isParam && !isValue(variable->old))
            define(variable.get(), 0.0);
}

void Course::noteStart() {
    for (auto const& variable : rt->dico)
        courses[static_cast<std::size_t>(variable->slot)] = {middle(variable->old)};
    solveConstraints();
}

void Course::start(std::vector<double> const& inputs) {
    assert(inputs.size() == rt->input.size());
    drawFirstValues();
    for (std::size_t i = 0; i < inputs.size(); ++i)
        define(rt->input[i], inputs[i]);
    restart();
}

void Course::restart() {
    std::vector<int> own(rt->dico.size(), 0);
    for (s_InitVar const& initial : rt->init)
        own[static_cast<std::size_t>(initial.var->slot)] = 1;
    for (s_Variable const* input : rt->input)
        own[static_cast<std::size_t>(input->slot)] = 1;
    for (auto const& variable : rt->dico)
        if (!variable->isParam && !own[static_cast<std::size_t>(variable->slot)]) {
            variable->defined = 0;
            variable->old = variable->new_ = s_Objet{};
            sn_fillHisto(variable.get());
        }
    time = 0;
    defineTheRest();
    noteStart();
}

// ---- A step ----

double Course::gainOf(s_Influence const& influence) {
    s_Objet const& gain = wide[static_cast<std::size_t>(influence.slot)];
    if (isReal(gain))
        return sn_infOf(gain);
    double const share = setting.uncertainty == Uncertainty::redrawn
                             ? gains.within(0.0, 1.0)
                             : shares[static_cast<std::size_t>(influence.slot)];
    return sn_infOf(gain) + share * (sn_supOf(gain) - sn_infOf(gain));
}

int Course::delayOf(s_Influence const& influence) {
    int const choices = influence.delayMax - influence.delayMin + 1;
    if (choices <= 1 || setting.uncertainty != Uncertainty::redrawn)
        return influence.delayMin;
    return influence.delayMin + static_cast<int>(gains.below(static_cast<std::size_t>(choices)));
}

// A static link reads the step itself at delay 0, every other the step before; *older* steps
// earlier.
double Course::causeOf(s_Influence const& influence, int older) {
    int const early = influence.type == INF_STATIC ? 0 : 1;
    return at(influence.cause->slot, time - early - delayOf(influence) - older);
}

bool Course::acts(s_Influence const& influence) {
    return influence.cond == nullptr || sn_evalCond(influence.cond, rt.get()) != 0;
}

double Course::nextStatic(s_CGraph const& graph) {
    double sum = 0.0;
    for (s_Influence const* influence : graph.causes)
        if (acts(*influence))
            sum += gainOf(*influence) * causeOf(*influence, 0);
    return sum;
}

double Course::nextIntegral(s_CGraph const& graph, int slot) {
    return at(slot, time - 1) + nextStatic(graph);
}

// Every cause shares the response of the last.
double Course::nextFirstOrder(s_CGraph const& graph, int slot) {
    double sum = 0.0;
    for (s_Influence const* influence : graph.causes)
        if (acts(*influence))
            sum += middle(influence->gain) * causeOf(*influence, 0);
    double const a = middle(graph.causes.back()->a1);
    return (1.0 - a) * sum + a * at(slot, time - 1);
}

double Course::nextSecondOrder(s_CGraph const& graph, int slot) {
    double sum = 0.0;
    for (s_Influence const* influence : graph.causes)
        if (acts(*influence))
            sum += middle(influence->b1) * causeOf(*influence, 0) +
                   middle(influence->b2) * causeOf(*influence, 1);
    s_Influence const& last = *graph.causes.back();
    return sum + middle(last.a1) * at(slot, time - 1) + middle(last.a2) * at(slot, time - 2);
}

double Course::next(s_Variable const& variable) {
    s_CGraph const* graph = variable.graph;
    if (graph == nullptr || graph->causes.empty())
        return at(variable.slot, time - 1);
    switch (graph->kind) {
        case INF_INTEGRAL:
            return nextIntegral(*graph, variable.slot);
        case INF_DYNAMIC:
            return nextFirstOrder(*graph, variable.slot);
        case INF_DYNAMIC2:
            return nextSecondOrder(*graph, variable.slot);
        case INF_STATIC:
            return nextStatic(*graph);
        default:
            return 0.0;  // couplings alone give no value
    }
}

void Course::update(s_Variable const& variable) {
    double value = next(variable);
    if (variable.domain)
        value = std::clamp(value, sn_infOf(*variable.domain), sn_supOf(*variable.domain));
    current(variable.slot) = value;
}

void Course::step(std::vector<double> const& inputs) {
    assert(inputs.size() == rt->input.size());
    showValues();
    ++time;
    for (auto& course : courses)
        course.push_back(course.back());  // what nothing changes stays
    for (s_Variable const* variable : rt->temporal)
        update(*variable);
    for (std::size_t i = 0; i < inputs.size(); ++i)
        current(rt->input[i]->slot) = inputs[i];
    for (s_Variable const* variable : rt->untemporal)
        update(*variable);
    solveConstraints();
}

// ---- Conditions, constraints, jumps ----

// The runtime's copies of the values are those of the current step.
void Course::showValues() {
    for (auto const& variable : rt->dico)
        variable->old = makeReal(at(variable->slot, time));
    for (s_GVar* gvar : rt->gV)
        if (gvar->kind == GV_VARIABLE)
            gvar->value = gvar->var->old;
}

// A constraint gives the value of what is defined, and of what holds no state, in place of what its
// causes say roughly. On a state or an input it is a statement, and the equations of the plant have
// to make it true.
bool Course::isGivenBy(s_Expr const& constraint) const {
    s_GVar const* gvar = constraint.gvar;
    if (gvar->kind != GV_VARIABLE)
        return gvar->kind == GV_INTERMEDIATE;
    auto const isIn = [gvar](std::vector<s_Variable*> const& list) {
        return std::find(list.begin(), list.end(), gvar->var) != list.end();
    };
    return !isIn(rt->input) && !isIn(rt->temporal);
}

void Course::solveConstraints() {
    showValues();
    for (s_Expr const* constraint : constraints) {
        if (!isGivenBy(*constraint))
            continue;
        sn_evalSolFunc(rt.get(), constraint);
        s_GVar* const given = constraint->gvar;
        given->value = makeReal(drawn(engine.TMP4, gains));
        if (given->kind == GV_VARIABLE)
            current(given->var->slot) = middle(given->value);
    }
}

bool Course::holds(s_Condition const& condition) {
    showValues();
    s_Condition* own = rt->condPool[static_cast<std::size_t>(condition.slot)].get();
    bool const isConstraint = own->kind == COND_EXPR || own->kind == COND_AND;
    return isConstraint && sn_evalCondExpr(own, rt.get()) != 0 ? true
                                                               : sn_evalCond(own, rt.get()) != 0;
}

void Course::tell(Atom const& atom, bool isTrue) {
    for (auto const& condition : rt->condPool)
        if (condition->atom == &atom && condition->kind == COND_ATOM)
            condition->val = isTrue ? 1 : 0;
}

void Course::jump(Transition const& transition) {
    for (auto const& function : transition.mapFuncs) {
        if (function->guard != nullptr && !holds(*function->guard))
            continue;
        for (s_mapfVar const& target : function->vars) {
            s_Variable const* variable = sn_getVarDico(rt.get(), target.name.c_str());
            assert(variable != nullptr);
            showValues();
            s_Objet const value =
                *sn_evalExpr(rt.get(), rt->mapExprs[static_cast<std::size_t>(target.expr)]);
            current(variable->slot) = drawn(value, firsts);
            if (variable->graph != nullptr && variable->graph->kind == INF_DYNAMIC2 && time > 0)
                courses[static_cast<std::size_t>(variable->slot)]
                       [static_cast<std::size_t>(time) - 1] = current(variable->slot);  // at rest
        }
    }
}

std::vector<double> Course::measures() {
    std::vector<double> shown;
    for (s_Variable const* measure : plant.measure)
        shown.push_back(value(*measure) + noises.within(-setting.noise, setting.noise));
    return shown;
}

}  // namespace truth
