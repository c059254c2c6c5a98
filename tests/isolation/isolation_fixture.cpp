// Suspects as text, and the making of causal graphs.
#include "isolation_fixture.h"
#include "fixtures/the_run.h"

#include <sstream>

#include "console/isolation_request.h"
#include "hybrid/tavro-runt.h"

namespace isolation_test {

namespace {

// Length of the histories of values, in cycles.
constexpr int histLen = 4;

s_Influence unconditional;

s_CGraph* nodeOf(s_runtime& rt, s_Variable* variable) {
    return variable->graph != nullptr ? variable->graph : mkGraph(rt, variable, INF_STATIC, {}, {});
}

}  // namespace

Suspects suspects(std::string const& notation) {
    Suspects list;
    std::istringstream words(notation);
    for (std::string word; words >> word;) {
        std::size_t const sign = word.find('@');
        int const delay = sign == std::string::npos ? 0 : std::stoi(word.substr(sign + 1));
        list.push_back(
            std::make_shared<Conflict>(Conflict{word.substr(0, sign), &unconditional, delay}));
    }
    return list;
}

std::string text(Suspects const& list) {
    std::string result;
    for (auto const& suspect : list) {
        result += (result.empty() ? "" : " ") + suspect->name;
        if (suspect->delay != 0)
            result += "@" + std::to_string(suspect->delay);
    }
    return result;
}

std::string text(std::vector<Suspects> const& sets) {
    std::string result;
    for (Suspects const& set : sets)
        result += "[" + text(set) + "]";
    return result;
}

std::string text(std::vector<Leaf> const& leaves) {
    std::string result;
    for (Leaf const& leaf : leaves)
        result += std::to_string(leaf.number) + "[" + text(leaf.conflictSet) + "]";
    return result;
}

MeasureConflicts measureWith(std::string const& notation) {
    MeasureConflicts measure;
    measure.conflicts = suspects(notation);
    measure.conflictSets = {measure.conflicts};
    return measure;
}

s_Variable* CausalGraph::variable(std::string const& name) {
    s_Variable* made = mkVariable(rt, name, histLen);
    made->old = made->new_ = made->mes = makeReal(0.0);
    return made;
}

s_Variable* CausalGraph::input(std::string const& name) {
    rt.input.push_back(variable(name));
    return rt.input.back();
}

s_Variable* CausalGraph::measure(std::string const& name, int misbehaves) {
    rt.measure.push_back(variable(name));
    rt.measure.back()->mesmisb = misbehaves;
    return rt.measure.back();
}

s_Variable* CausalGraph::measureOf(std::string const& name,
                                   std::vector<std::string> const& influences, int misbehaves) {
    s_Variable* made = measure(name, misbehaves);
    for (std::string const& influence : influences)
        link(influence, input(name + "." + influence), made);
    return made;
}

s_Influence* CausalGraph::link(std::string const& name, s_Variable* cause, s_Variable* effect,
                               int delay, s_Condition* cond) {
    s_Influence* made =
        mkInfluence(rt, name, INF_STATIC, cause, effect, cond, past, makeReal(1.0), delay, 0);
    nodeOf(rt, effect)->causes.push_back(made);
    nodeOf(rt, cause)->effects.push_back(made);
    return made;
}

s_Condition* CausalGraph::adopt(int kind, s_Condition* left, s_Condition* right) {
    auto made = mkCond();
    made->kind = kind;
    made->left = left;
    made->right = right;
    return adoptCondition(rt, std::move(made));
}

s_Condition* CausalGraph::constant(boolVal value) {
    s_Condition* made = adopt(COND_CONST, nullptr, nullptr);
    made->val = value;
    return made;
}

s_Condition* CausalGraph::relation(s_Variable* left, enum relation op, s_Objet const& value) {
    s_Condition* made = adopt(COND_REL, nullptr, nullptr);
    made->var = left;
    made->op = op;
    made->value = value;
    return made;
}

s_Condition* CausalGraph::relation(s_Variable* left, enum relation op, s_Variable* right) {
    s_Condition* made = adopt(COND_REL, nullptr, nullptr);
    made->var = left;
    made->op = op;
    made->var2 = right;
    return made;
}

s_Condition* CausalGraph::either(s_Condition* left, s_Condition* right) {
    return adopt(COND_OR, left, right);
}

s_Condition* CausalGraph::both(s_Condition* left, s_Condition* right) {
    return adopt(COND_AND, left, right);
}

s_Condition* CausalGraph::negation(s_Condition* operand) {
    return adopt(COND_NOT, operand, nullptr);
}

s_Condition* CausalGraph::expression(s_Variable* left, enum relation op, s_Expr* expr, Atom* atom) {
    return mkExprCond(rt, left, op, expr, 0, atom, 0);
}

s_Expr* CausalGraph::number(s_Objet const& value) {
    s_Expr* leaf = operation(EXPR_CONST, nullptr);
    leaf->gvar = mkConstant(rt, value);
    return leaf;
}

s_Expr* CausalGraph::value(s_Variable* variable) {
    s_Expr* leaf = operation(EXPR_VAR, nullptr);
    leaf->gvar = mkConstraintVar(rt, variable, variable->old);
    return leaf;
}

s_Expr* CausalGraph::operation(expressionOp op, s_Expr* left, s_Expr* right) {
    auto made = std::make_unique<s_Expr>();
    made->op = op;
    made->left = left;
    made->right = right;
    return adoptExpr(rt, std::move(made));
}

std::string diagnosis(s_runtime* rt, int level) {
    faultIsolationSetup(rt, 1);
    sn_razDiagBuf(rt);
    hittingSetDiagnosis(rt, level);
    return rt->diagBuf;
}

Suspects upstreamOf(s_runtime const* rt, s_Variable* variable, int delay) {
    Suspects found;
    std::vector<s_Variable const*> visited;
    findConflictsAux(rt, variable, found, visited, delay);
    return found;
}

void IsolationTest::reset() {
    theRun().engine.env_opti = 1;
    theRun().engine.inps.clear();
    theRun().engine.meas.clear();
    theRun().engine.nrt.clear();
    theRun().tavro_rt = nullptr;
    tDiag = IsolationRequest(nullptr);
}

}  // namespace isolation_test
