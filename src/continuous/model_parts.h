// What a compiled model builds its runtime from.
//
// Records are made straight into the runtime that will own them, in any order; `arrange` then gives
// an array the order that the model fixes.
#pragma once

#include <cassert>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "continuous/records.h"

// A parameter, with its value; its histories of *histLen* cycles are never written.
s_Variable* mkParameter(s_runtime& rt, std::string const& nom, double value, int histLen);
// A variable without bounds, with histories of *histLen* cycles.
s_Variable* mkVariable(s_runtime& rt, std::string const& nom, int histLen);

// A numbered or shared condition on a discrete atom.
s_Condition* mkAtomCond(s_runtime& rt, Atom* atom, int atomRef);
// An or / and of two conditions; the operands may be null until the model is wired together.
s_Condition* mkBinaryCond(s_runtime& rt, conditionKind kind, s_Condition* left, s_Condition* right,
                          int atomRef);
// *variable* stands in relation *op* to constraint *index*, which is *expr*. *atom* may be null.
s_Condition* mkExprCond(s_runtime& rt, s_Variable* variable, relation op, s_Expr* expr, int index,
                        Atom* atom, int atomRef);

s_GVar* mkConstant(s_runtime& rt, s_Objet const& value);
s_GVar* mkConstraintVar(s_runtime& rt, s_Variable* variable, s_Objet const& value);
// The constraint: *gvar* lies in offset + space.
s_Expr* mkSpace(s_runtime& rt, s_GVar* gvar, double offset, s_Objet const& space);

// An influence with all coefficients 0, and every past value of its condition 1.
s_Influence* mkInfluence(s_runtime& rt, std::string const& nom, influType type, s_Variable* cause,
                         s_Variable* effect, s_Condition* cond, int condHistoLn,
                         s_Objet const& gain, int delay, int useOpti);
// The graph node of *variable*; *kind* has a meaning only with causes.
s_CGraph* mkGraph(s_runtime& rt, s_Variable* variable, influType kind,
                  std::vector<s_Influence*> causes, std::vector<s_Influence*> effects);

// Gives every array that has one entry per measure, display, influence or constraint its length.
void sizeArrays(s_runtime& rt);

// Puts the records of a pool in the order given, which must name each of them once.
template <typename Record>
void arrange(std::vector<std::unique_ptr<Record>>& pool, std::vector<Record*> const& order) {
    assert(pool.size() == order.size());
    std::vector<std::unique_ptr<Record>> arranged;
    for (Record* record : order) {
        arranged.push_back(std::move(pool[static_cast<std::size_t>(record->slot)]));
        assert(arranged.back().get() == record);
    }
    for (std::size_t i = 0; i < arranged.size(); ++i)
        arranged[i]->slot = static_cast<int>(i);
    pool = std::move(arranged);
}
