// Making the records of a compiled model.
#include "continuous/model_parts.h"

#include <algorithm>
#include <cfloat>

#include "continuous/sorn-runt.h"

namespace {

std::unique_ptr<s_Variable> mkQuantity(std::string const& nom, int histLen) {
    auto quantity = std::make_unique<s_Variable>();
    quantity->nom = nom;
    quantity->histo = History<s_Objet>(histLen);
    quantity->mesHisto = History<s_Objet>(histLen);
    quantity->lowHisto = History<int>(histLen);
    quantity->highHisto = History<int>(histLen);
    return quantity;
}

}  // namespace

s_Variable* mkParameter(s_runtime& rt, std::string const& nom, double value, int histLen) {
    auto parameter = mkQuantity(nom, histLen);
    parameter->isParam = 1;
    parameter->old = makeReal(value);
    return adoptVariable(rt, std::move(parameter));
}

s_Variable* mkVariable(s_runtime& rt, std::string const& nom, int histLen) {
    auto variable = mkQuantity(nom, histLen);
    variable->domain = makeRange(-DBL_MAX, DBL_MAX, 1, 1);
    return adoptVariable(rt, std::move(variable));
}

s_Condition* mkAtomCond(s_runtime& rt, Atom* atom, int atomRef) {
    auto condition = mkCond();
    condition->kind = COND_ATOM;
    condition->atom = atom;
    condition->atomRef = atomRef;
    return adoptCondition(rt, std::move(condition));
}

s_Condition* mkBinaryCond(s_runtime& rt, conditionKind kind, s_Condition* left, s_Condition* right,
                          int atomRef) {
    auto condition = mkCond();
    condition->kind = kind;
    condition->left = left;
    condition->right = right;
    condition->atomRef = atomRef;
    return adoptCondition(rt, std::move(condition));
}

s_Condition* mkExprCond(s_runtime& rt, s_Variable* variable, relation op, s_Expr* expr, int index,
                        Atom* atom, int atomRef) {
    auto condition = mkCond();
    condition->kind = COND_EXPR;
    condition->var = variable;
    condition->op = op;
    condition->expr = expr;
    condition->acIdx = {index};
    condition->atom = atom;
    condition->atomRef = atomRef;
    return adoptCondition(rt, std::move(condition));
}

s_GVar* mkConstant(s_runtime& rt, s_Objet const& value) {
    auto gvar = std::make_unique<s_GVar>();
    gvar->kind = GV_CONST;
    gvar->value = value;
    return adoptGVar(rt, std::move(gvar));
}

s_GVar* mkConstraintVar(s_runtime& rt, s_Variable* variable, s_Objet const& value) {
    auto gvar = std::make_unique<s_GVar>();
    gvar->kind = GV_VARIABLE;
    gvar->var = variable;
    gvar->value = value;
    return adoptGVar(rt, std::move(gvar));
}

namespace {

s_Expr* mkConstantExpr(s_runtime& rt, s_Objet const& value) {
    auto leaf = std::make_unique<s_Expr>();
    leaf->op = EXPR_CONST;
    leaf->gvar = mkConstant(rt, value);
    return adoptExpr(rt, std::move(leaf));
}

}  // namespace

s_Expr* mkSpace(s_runtime& rt, s_GVar* gvar, double offset, s_Objet const& space) {
    auto sum = std::make_unique<s_Expr>();
    sum->op = EXPR_ADD;
    sum->gvar = gvar;
    sum->left = mkConstantExpr(rt, makeReal(offset));
    sum->right = mkConstantExpr(rt, space);
    return adoptExpr(rt, std::move(sum));
}

s_Influence* mkInfluence(s_runtime& rt, std::string const& nom, influType type, s_Variable* cause,
                         s_Variable* effect, s_Condition* cond, int condHistoLn,
                         s_Objet const& gain, int delay, int useOpti) {
    auto influence = std::make_unique<s_Influence>();
    influence->nom = nom;
    influence->type = type;
    influence->cause = cause;
    influence->effect = effect;
    influence->cond = cond;
    influence->condHistoLn = condHistoLn;
    influence->condHisto.assign(static_cast<std::size_t>(std::max(condHistoLn, 1)), 1);
    influence->gain = gain;
    influence->delayMin = influence->delayMax = delay;
    for (s_Objet* coefficient :
         {&influence->respTime, &influence->a1, &influence->b1, &influence->a2, &influence->b2})
        *coefficient = makeReal(0.0);
    influence->useOpti = useOpti;
    return adoptInfluence(rt, std::move(influence));
}

s_CGraph* mkGraph(s_runtime& rt, s_Variable* variable, influType kind,
                  std::vector<s_Influence*> causes, std::vector<s_Influence*> effects) {
    auto node = std::make_unique<s_CGraph>();
    node->kind = kind;
    node->causes = std::move(causes);
    node->effects = std::move(effects);
    variable->graph = adoptGraph(rt, std::move(node));
    return variable->graph;
}

void sizeArrays(s_runtime& rt) {
    rt.dinfval.assign(rt.display.size(), 0.0);
    rt.dsupval.assign(rt.display.size(), 0.0);
    for (auto* perMeasure :
         {&rt.lowalarm, &rt.highalarm, &rt.meslowmisb, &rt.meshighmisb, &rt.mesmisb})
        perMeasure->assign(rt.measure.size(), 0);
    rt.condin.assign(rt.influ.size(), 0);
    rt.condout.assign(rt.influ.size(), 0);
    rt.inAc.assign(rt.gC.size(), 0);
    rt.valSpc.assign(rt.aC.size(), 0);
    rt.ccAgenda.assign(rt.aC.size(), 0);
}
