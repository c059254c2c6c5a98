// What the tests of fault isolation share: suspects written as text, causal graphs made by hand,
// and the engine as it stands at the start of the program.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "continuous/isolation.h"
#include "continuous/model_parts.h"
#include "continuous/sorn-runt.h"
#include "fixtures/one_engine.h"
#include "fixtures/the_run.h"
#include "model/model_fixture.h"

namespace isolation_test {

using model_fixture::complaint;

// Suspects written as "a b@2": names, each with its delay unless that is 0. None of them has a
// condition, so that equal names are equal suspects.
Suspects suspects(std::string const& notation);
// The same notation; the sets or leaves of a list stand in brackets, a leaf behind its number.
std::string text(Suspects const& list);
std::string text(std::vector<Suspects> const& sets);
std::string text(std::vector<Leaf> const& leaves);
// A misbehaving or a behaving measure with these suspects.
MeasureConflicts measureWith(std::string const& notation);

// A causal graph. Conditions were true, and influences active, for the last `past` cycles.
class CausalGraph {
public:
    static constexpr int past = 8;

    CausalGraph() { rt.engine = &theRun().engine; }

    // What is neither measured nor an input.
    s_Variable* variable(std::string const& name);
    s_Variable* input(std::string const& name);
    s_Variable* measure(std::string const& name, int misbehaves = 0);
    // A measure with an input behind each of these influences.
    s_Variable* measureOf(std::string const& name, std::vector<std::string> const& influences,
                          int misbehaves = 0);
    // The next cause of *effect*.
    s_Influence* link(std::string const& name, s_Variable* cause, s_Variable* effect, int delay = 0,
                      s_Condition* cond = nullptr);
    // Gives every array with an entry per measure or influence its length.
    void ready() { sizeArrays(rt); }

    s_Condition* constant(boolVal value);
    s_Condition* relation(s_Variable* left, enum relation op, s_Objet const& value);
    s_Condition* relation(s_Variable* left, enum relation op, s_Variable* right);
    s_Condition* either(s_Condition* left, s_Condition* right);
    s_Condition* both(s_Condition* left, s_Condition* right);
    s_Condition* negation(s_Condition* operand);
    s_Condition* on(Atom* atom) { return mkAtomCond(rt, atom, 0); }
    s_Condition* expression(s_Variable* left, enum relation op, s_Expr* expr, Atom* atom = nullptr);

    s_Expr* number(s_Objet const& value);
    s_Expr* value(s_Variable* variable);
    s_Expr* operation(expressionOp op, s_Expr* left, s_Expr* right = nullptr);

    s_runtime rt;

private:
    s_Condition* adopt(int kind, s_Condition* left, s_Condition* right);
};

// The text of a diagnosis at a level, from an empty text and with no memory of known measures.
std::string diagnosis(s_runtime* rt, int level);

// What is sent with that text of a diagnosis.
inline std::string sent(std::string const& text) {
    return "Diagnostic Results:\n" + text + "\n";
}

// The suspects of a walk from a variable.
Suspects upstreamOf(s_runtime const* rt, s_Variable* variable, int delay = 0);

// The engine and a request as they stand at the start of the program, before and after each test.
class IsolationTest : public testing::Test {
protected:
    IsolationTest() { reset(); }
    ~IsolationTest() override { reset(); }

private:
    static void reset();
};

}  // namespace isolation_test
