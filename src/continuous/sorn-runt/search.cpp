// The bound search: tighter bounds of an effect, and narrower causes of a measured one.
//
// The closed forms of dynamic.cpp take coefficients and values as independent. A search instead
// chooses one point of all parameters and values inside their intervals, with the bounded simplex
// of Nelder and Mead (support/nelder.h, with the publication), once for each side:
//   - call_nelder_second takes the extremes of the effect over all these points;
//   - call_nelder_obs takes the extremes of the causes over the points that explain a measure.
// The values at the points found are written back: the runtime keeps, as a narrower state, the
// arguments that realise the extremes. How an optimiser run ended is not looked at; also at its
// limit it leaves its best point.
//
// Rejected: a bound on the number of searches per cycle. They are by far the most expensive steps
// of a cycle, up to four runs for one effect, so each is asked for by the model (useOpti), and
// env_opti turns all of them off.

#include "continuous/search.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <vector>

#include "continuous/sorn-runt.h"

namespace {

// The search vector of one search, allocated once for it.
struct SearchBox {
    explicit SearchBox(std::size_t size)
        : n(static_cast<int>(size)), start(size), lower(size), upper(size) {}

    void fill(int i, s_Objet const& value) {
        assert(i >= 0 && static_cast<std::size_t>(i) < start.size());
        meanCoef(&value, start.data(), lower.data(), upper.data(), i);
    }

    int n;  // entries that are searched; the arrays may have room for more
    std::vector<double> start, lower, upper;
};

// p[0] to p[2] of search.h.
using Parameters = std::array<double, 3>;

// The point where the search ends.
std::vector<double> searchPoint(s_engine& engine, Nelder_cost cost, SearchBox& box, Parameters& p) {
    assert(cost != nullptr && box.n >= 0 && static_cast<std::size_t>(box.n) <= box.start.size());
    std::vector<double> x = box.start;
    int status = 0;
    Nelder_minimise(engine.host, engine.random, cost, &box.n, x.data(), box.lower.data(),
                    box.upper.data(), p.data(), nullptr, &status);
    return x;
}

double costAt(Nelder_cost cost, SearchBox& box, std::vector<double>& x, Parameters& p) {
    int constraint = 0, status = 0;
    return cost(&box.n, x.data(), box.lower.data(), box.upper.data(), p.data(), nullptr,
                &constraint, &status);
}

// The search vector of *influence*, whose cause values are left in TMP2 and TMP5. False, with
// nothing loaded, when it is not of the rational form: then there is no vector, and the effect
// keeps its closed-form bounds.
bool fillSecondOrder(s_Influence* influence, s_runtime* rt, s_Objet const& prev1,
                     s_Objet const& prev2, SearchBox& box) {
    if (!mean2ndOrderCoefs(influence, box.start.data(), box.lower.data(), box.upper.data()))
        return false;
    box.fill(AT_Y1, prev1);
    box.fill(AT_Y2, prev2);
    sn_loadCauseValue(rt, influence);
    box.fill(AT_U1, rt->engine->TMP2);
    box.fill(AT_U2, rt->engine->TMP5);
    return true;
}

}  // namespace

void meanCoef(s_Objet const* o, double* start, double* lower, double* upper, int i) {
    if (!isValue(*o))
        return;
    lower[i] = sn_infOf(*o);
    upper[i] = sn_supOf(*o);
    start[i] = isReal(*o) ? o->real : (upper[i] + lower[i]) * 0.5;
}

void mean1stOrderCoefs(s_Influence const* influence, double* start, double* lower, double* upper) {
    meanCoef(&influence->respTime, start, lower, upper, 2);
    meanCoef(&influence->gain, start, lower, upper, 3);
}

int mean2ndOrderCoefs(s_Influence const* influence, double* start, double* lower, double* upper) {
    std::optional<s_Objet> const* const parameters[] = {
        &influence->n1, &influence->n2, &influence->d0, &influence->d1, &influence->d2};
    for (auto const* parameter : parameters)
        if (!parameter->has_value())
            return 0;
    for (int i = AT_N1; i <= AT_D2; ++i)
        meanCoef(&**parameters[i], start, lower, upper, i);
    // A gain that the model does not give counts as 1, as in the coefficients.
    meanCoef(isValue(influence->gain) ? &influence->gain : objUn, start, lower, upper, AT_GAIN);
    return 1;
}

void setNelderResult(s_Objet* o, double a, double b) {
    if (!isRange(*o))
        return;
    o->rng.inf = std::min(a, b);
    o->rng.sup = std::max(a, b);
}

bool sn_mayBeSearched(s_CGraph const& graph, s_runtime* rt) {
    return !rt->engine->rules.narrow && !sn_anyOpen(graph, rt);
}

void call_nelder_second(s_Influence* influence, s_runtime* rt, s_Objet* prev1, s_Objet* prev2) {
    SearchBox box(SECOND_ORDER_DIMENSION);
    if (!fillSecondOrder(influence, rt, *prev1, *prev2, box))
        return;
    s_engine& engine = *rt->engine;
    Parameters p = {rt->Ts, LOW_SIDE, 0.0};
    std::vector<double> x1 = searchPoint(engine, engine.opti_second_order_ptr, box, p);
    double const low = costAt(engine.opti_second_order_ptr, box, x1, p);
    p[1] = HIGH_SIDE;
    std::vector<double> x2 = searchPoint(engine, engine.opti_second_order_ptr, box, p);
    double const high = -costAt(engine.opti_second_order_ptr, box, x2, p);
    // Required: the result replaces the closed-form bounds unseen. A sum that is a number stays
    // one, and takes the low value: hence the order of the two writes.
    sn_setSup(&engine.TMP1, high);
    sn_setInf(&engine.TMP1, low);
    s_Objet* const narrowed[] = {prev1, prev2, &engine.TMP2, &engine.TMP5};
    for (int i = 0; i < 4; ++i)
        setNelderResult(narrowed[i], x1[AT_Y1 + i], x2[AT_Y1 + i]);
}

namespace {

// One search for the causes of an observed effect.
struct ObsSearch {
    SearchBox box{0};
    Nelder_cost cost = nullptr;
    s_Influence* last = nullptr;  // the influence looked at last
    // The entries of the vector that are results: every *step*-th from *first*, below *end*.
    int first = 0, step = 1, end = 0;
};

int countActive(s_CGraph const& graph, s_runtime* rt) {
    int active = 0;
    for (s_Influence* influence : graph.causes)
        active += sn_isActive(influence, rt) ? 1 : 0;
    return active;
}

// Required: the active influences are counted by a pass of their own before they are loaded, so
// that every condition is pushed twice; the histories of conditions show how often they were
// evaluated.
bool setUpStatic(s_CGraph const& graph, s_runtime* rt, ObsSearch& search) {
    if (countActive(graph, rt) == 0)
        return false;
    search.box = SearchBox(2 * graph.causes.size());
    search.box.n = 0;
    for (s_Influence* influence : graph.causes) {
        search.last = influence;
        if (!sn_isActive(influence, rt))
            continue;
        sn_loadCauseValue(rt, influence);
        search.box.fill(search.box.n++, rt->engine->TMP2);
        search.box.fill(search.box.n++, influence->b1);
    }
    search.cost = rt->engine->opti_static_obs_ptr;
    search.step = 2;
    search.end = search.box.n;
    return true;
}

bool setUpSecondOrder(s_CGraph const& graph, s_runtime* rt, s_Objet const& prev1,
                      s_Objet const& prev2, ObsSearch& search) {
    search.last = graph.causes.front();
    search.box = SearchBox(SECOND_ORDER_DIMENSION);
    search.cost = rt->engine->opti_second_order_obs_ptr;
    search.first = AT_Y1;
    search.end = AT_GAIN;
    return sn_isActive(search.last, rt) &&
           fillSecondOrder(search.last, rt, prev1, prev2, search.box);
}

// The vector of opti_integral_obs; its result is the cause value.
bool setUpIntegral(s_CGraph const& graph, s_runtime* rt, s_Objet const& prev1, ObsSearch& search) {
    search.last = graph.causes.front();
    if (!sn_isActive(search.last, rt))
        return false;
    sn_loadCauseValue(rt, search.last);
    search.box = SearchBox(3);
    search.box.fill(0, prev1);
    search.box.fill(1, rt->engine->TMP2);
    search.box.fill(2, search.last->gain);
    search.cost = rt->engine->opti_integral_obs_ptr;
    search.first = 1;
    search.end = 2;
    return true;
}

bool setUp(influType kind, s_CGraph const& graph, s_runtime* rt, s_Objet const* prev1,
           s_Objet const* prev2, ObsSearch& search) {
    switch (kind) {
        case INF_STATIC:
            return setUpStatic(graph, rt, search);
        case INF_DYNAMIC2:
            return setUpSecondOrder(graph, rt, *prev1, *prev2, search);
        case INF_INTEGRAL:
            return setUpIntegral(graph, rt, *prev1, search);
        default:
            rt->engine->out << "default: " << kind << std::endl;
            return false;
    }
}

// What the effect has to reach: the current measure, or one bound of the closed-form result. False
// when there is no such measure: nothing is known then that a search could explain, so none is
// made.
bool observe(s_runtime const* rt, s_Variable const* effect, bool useMeasure, s_Objet const& result,
             double* observed) {
    if (!useMeasure) {
        *observed = sn_infOf(result);
        return true;
    }
    auto const found = std::find(rt->measure.begin(), rt->measure.end(), effect);
    if (found == rt->measure.end() || rt->mesval == nullptr)
        return false;
    *observed = rt->mesval[found - rt->measure.begin()];
    return true;
}

std::vector<double> resultsOf(ObsSearch const& search, std::vector<double> const& x) {
    std::vector<double> results;
    for (int i = search.first; i < search.end; i += search.step)
        results.push_back(x[static_cast<std::size_t>(i)]);
    return results;
}

// Only a computed value may be narrowed: neither one that is given nor one under suspicion.
bool mayBeNarrowed(s_runtime const* rt, s_Variable const* cause) {
    return !cause->isParam && !sn_isMeasure(rt, cause) && !sn_isInput(rt, cause) &&
           cause->lowalarm == 0 && cause->highalarm == 0;
}

void narrowPast(History<s_Objet>* history, int i, double a, double b) {
    if (i < 0 || i >= history->size() || !isRange((*history)[i]))
        return;
    s_Objet past = (*history)[i];
    setNelderResult(&past, a, b);
    history->set(i, past);
}

// The value of the cause at the influence's delay.
void narrowCause(s_Influence* influence, double a, double b) {
    s_Variable* cause = influence->cause;
    int const delay = influence->delayMax - (influence->type == INF_STATIC ? 1 : 0);
    if (delay == -1)
        setNelderResult(&cause->new_, a, b);
    else if (delay == 0)
        setNelderResult(&cause->old, a, b);
    else
        narrowPast(&cause->histo, delay - 1, a, b);
}

// Required: results and causes are matched by position among the causes that may be narrowed, not
// by the cause that a result was searched for. So a second-order cause gets the result for y(k-1).
void writeBack(s_CGraph const& graph, s_runtime* rt, std::vector<double> const& low,
               std::vector<double> const& high) {
    assert(low.size() == high.size());
    std::size_t k = 0;
    for (s_Influence* influence : graph.causes) {
        if (!sn_isActive(influence, rt) || !mayBeNarrowed(rt, influence->cause))
            continue;
        if (k < low.size())
            narrowCause(influence, low[k], high[k]);
        ++k;
    }
}

// A static result is taken over only when it explains the measure.
void evaluateStatic(s_CGraph const& graph, s_runtime* rt, double observed, s_Objet* result) {
    s_Objet const y = opti_static_eval(static_cast<int>(graph.causes.size()), &graph, rt);
    if (sn_infOf(y) <= observed && observed <= sn_supOf(y))
        sn_putObjet(&y, result);
}

void evaluate(influType kind, s_CGraph const& graph, s_runtime* rt, s_Objet* prev1, s_Objet* prev2,
              double observed, s_Objet* result) {
    if (kind == INF_STATIC)
        evaluateStatic(graph, rt, observed, result);
    else if (kind == INF_DYNAMIC2)
        call_nelder_second(graph.causes.front(), rt, prev1, prev2);
    else
        opti_integral_eval(static_cast<int>(graph.causes.size()), &graph, prev1, rt);
}

}  // namespace

void call_nelder_obs(s_Variable* variable, s_runtime* rt, s_Objet* prev1, s_Objet* prev2,
                     s_Objet* result, influType kind, bool useMeasure) {
    assert(variable->graph != nullptr && !variable->graph->causes.empty());
    s_CGraph const& graph = *variable->graph;
    ObsSearch search;
    if (!setUp(kind, graph, rt, prev1, prev2, search))
        return;
    Parameters p = {rt->Ts, LOW_SIDE, 0.0};
    assert(search.last != nullptr);
    if (!observe(rt, search.last->effect, useMeasure, *result, &p[2]))
        return;
    std::vector<double> const low =
        resultsOf(search, searchPoint(*rt->engine, search.cost, search.box, p));
    p[1] = HIGH_SIDE;
    if (!useMeasure)
        p[2] = sn_supOf(*result);
    std::vector<double> const high =
        resultsOf(search, searchPoint(*rt->engine, search.cost, search.box, p));
    writeBack(graph, rt, low, high);
    evaluate(kind, graph, rt, prev1, prev2, p[2], result);
}

s_Objet opti_static_eval(int count, s_CGraph const* graph, s_runtime* rt) {
    s_Objet sum = *objZero;
    for (int i = 0; i < count; ++i) {
        s_Influence* influence = graph->causes[static_cast<std::size_t>(i)];
        if (!sn_isActive(influence, rt))
            continue;
        sn_loadCauseValue(rt, influence);
        s_Objet part = rt->engine->TMP2;
        sn_mulObjet(&part, &influence->b1);
        sn_addObjet(&sum, &part);
    }
    return sum;
}

s_Objet opti_integral_eval(int, s_CGraph const* graph, s_Objet const* previous, s_runtime* rt) {
    s_Influence* influence = graph->causes.front();
    sn_loadCauseValue(rt, influence);
    s_Objet sum = rt->engine->TMP2;
    sn_mulObjet(&sum, &influence->b1);
    sn_addObjet(&sum, previous);
    std::ostream& out = rt->engine->out;
    out << "y: ";
    sn_printObjet(dataPrinter(*rt->engine, out), &sum);
    out << std::endl;
    return sum;
}
