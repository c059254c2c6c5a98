// The text of a diagnosis: a pair of square brackets a leaf, a pair of curly ones a suspect, with
// the influence's name, its delay and its condition, as in [{T1.i1,0,((thermostat.mode=on))}].
#include <algorithm>
#include <cassert>

#include "continuous/bridge.h"
#include "continuous/isolation.h"
#include "continuous/sorn-runt.h"
#include "model/Atom.h"
#include "support/memory_watch.h"
#include "support/numbers.h"

namespace {

void append(s_runtime* rt, std::string const& text) {
    rt->diagBuf += text;
}

void printDiagValue(s_runtime* rt, s_Objet const& value) {
    if (isRange(value))
        append(rt, shortText(value.rng.inf) + " " + shortText(value.rng.sup));
    else
        append(rt, shortText(sn_infOf(value)));
}

// Required: two operators have no text, and the right-hand side is never written.
void printDiagRelation(s_runtime* rt, s_Condition const* condition) {
    char const* relation = "";
    switch (condition->op) {
        case REL_EQ:
            relation = " = ";
            break;
        case REL_DIFF:
            relation = " != ";
            break;
        case REL_LT:
            relation = " < ";
            break;
        case REL_GE:
            relation = " >= ";
            break;
        default:
            break;
    }
    append(rt, condition->var->nom + relation);
}

void printDiagOperands(s_runtime* rt, s_Condition const* condition, char const* separator) {
    if (condition->left != nullptr) {
        sn_printDiagCond(rt, condition->left);
        append(rt, separator);
    }
    if (condition->right != nullptr)
        sn_printDiagCond(rt, condition->right);
}

void printDiagBody(s_runtime* rt, s_Condition const* condition) {
    switch (condition->kind) {
        case COND_CONST:
            append(rt, condition->val == 1 ? "true" : "false");
            break;
        case COND_REL:
            printDiagRelation(rt, condition);
            break;
        case COND_OR:
            printDiagOperands(rt, condition, " | ");
            break;
        case COND_AND:
            printDiagOperands(rt, condition, " & ");
            break;
        case COND_NOT:
            append(rt, "! ");
            sn_printDiagCond(rt, condition->left);
            break;
        case COND_ATOM:
            append(rt, std::string("(") + condition->atom->getId() + ")");
            printDiagOperands(rt, condition, " | ");
            break;
        case COND_EXPR:
            sn_printDiagExpr(rt, condition->expr);
            printDiagRelation(rt, condition);
            break;
        default:
            break;
    }
}

}  // namespace

void sn_razDiagBuf(s_runtime* rt) {
    rt->diagBuf.clear();
}

void sn_prepareDiag(s_runtime* rt) {
    sn_razDiagBuf(rt);
    if (rt->misbWindow <= 0)
        return;
    for (s_Variable* measure : rt->measure) {
        auto& history = measure->misbHisto;
        // A copy made while the measure behaved has no history: it begins anew.
        history.resize(static_cast<std::size_t>(rt->misbWindow), 0);
        bool const misbehavedBefore =
            std::any_of(history.begin(), history.end() - 1, [](int flag) { return flag != 0; });
        std::rotate(history.begin(), history.end() - 1, history.end());
        history.front() = measure->mesmisb;
        measure->mesmisb = misbehavedBefore || measure->mesmisb != 0 ? 1 : 0;
    }
}

int numLength(int number) {
    int digits = 1;
    while (number /= 10)
        ++digits;
    return digits;
}

void printHSTree(s_runtime* rt, std::vector<Leaf> const& leaves) {
    // Each condition is handed over once in one isolation.
    std::vector<s_Condition const*> existingConflicts;
    rt->bridgeConflicts.emplace();
    for (Leaf const& leaf : leaves) {
        watchMemory(rt->engine->host);
        append(rt, "[");
        for (auto const& suspect : leaf.conflictSet) {
            addBridgeConflict(rt, suspect->influence->cond, existingConflicts);
            printConflict(rt, suspect.get());
        }
        append(rt, "]");
    }
}

void printConflict(s_runtime* rt, Conflict const* conflict) {
    if (conflict == nullptr) {
        rt->engine->err << "Unable to print conflict (NULL Pointer)\n";
        return;
    }
    append(rt, "{" + conflict->name + "," + std::to_string(conflict->delay) + ",");
    if (conflict->influence->cond == nullptr)
        append(rt, "()");
    else
        sn_printDiagCond(rt, conflict->influence->cond);
    append(rt, "}");
}

void sn_printDiagCond(s_runtime* rt, s_Condition const* condition) {
    append(rt, "(");
    printDiagBody(rt, condition);
    append(rt, ")");
}

void sn_printDiagExpr(s_runtime* rt, s_Expr const* expr) {
    static constexpr char const* operators[] = {"+", "-", "*", "/", "**"};
    if (expr->op == EXPR_CONST) {
        printDiagValue(rt, expr->gvar->value);
    } else if (expr->op == EXPR_VAR) {
        append(rt, expr->gvar->var->nom);
    } else if (expr->op == EXPR_NEG) {
        append(rt, "-(");
        sn_printDiagExpr(rt, expr->left);
        append(rt, ")");
    } else {
        append(rt, "(");
        sn_printDiagExpr(rt, expr->left);
        assert(expr->op >= EXPR_ADD && expr->op < EXPR_ADD + 5);
        append(rt, std::string(")") + operators[expr->op - EXPR_ADD] + "(");
        sn_printDiagExpr(rt, expr->right);
        append(rt, ")");
    }
}
