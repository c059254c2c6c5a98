// The text of a diagnosis: a pair of square brackets a leaf, a pair of curly ones a suspect, with
// the influence's name, its delay and its condition, as in [{T1.i1,0,((thermostat.mode=on))}].
#include <algorithm>
#include <cassert>
#include <cstdarg>
#include <cstdio>

#include "continuous/bridge.h"
#include "continuous/isolation.h"
#include "continuous/sorn-runt.h"
#include "model/Atom.h"
#include "support/memory_watch.h"

namespace {

[[gnu::format(printf, 2, 3)]] void append(s_runtime* rt, char const* format, ...) {
    va_list arguments, again;
    va_start(arguments, format);
    va_copy(again, arguments);
    int const length = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
    std::vector<char> text(static_cast<std::size_t>(length) + 1);
    std::vsnprintf(text.data(), text.size(), format, again);
    va_end(again);
    rt->diagBuf.append(text.data(), static_cast<std::size_t>(length));
}

void printDiagValue(s_runtime* rt, s_Objet const& value) {
    if (isRange(value))
        append(rt, "%g %g", value.rng.inf, value.rng.sup);
    else
        append(rt, "%g", sn_infOf(value));
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
    append(rt, "%s%s", condition->var->nom.c_str(), relation);
}

void printDiagOperands(s_runtime* rt, s_Condition const* condition, char const* separator) {
    if (condition->left != nullptr) {
        sn_printDiagCond(rt, condition->left);
        append(rt, "%s", separator);
    }
    if (condition->right != nullptr)
        sn_printDiagCond(rt, condition->right);
}

void printDiagBody(s_runtime* rt, s_Condition const* condition) {
    switch (condition->kind) {
        case COND_CONST:
            append(rt, "%s", condition->val == 1 ? "true" : "false");
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
            append(rt, "(%s)", condition->atom->getId());
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
        watchMemory();
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
        std::fprintf(stderr, "Unable to print conflict (NULL Pointer)\n");
        return;
    }
    append(rt, "{%s,%d,", conflict->name.c_str(), conflict->delay);
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
    static char const* const operators[] = {"+", "-", "*", "/", "**"};
    if (expr->op == EXPR_CONST) {
        printDiagValue(rt, expr->gvar->value);
    } else if (expr->op == EXPR_VAR) {
        append(rt, "%s", expr->gvar->var->nom.c_str());
    } else if (expr->op == EXPR_NEG) {
        append(rt, "-(");
        sn_printDiagExpr(rt, expr->left);
        append(rt, ")");
    } else {
        append(rt, "(");
        sn_printDiagExpr(rt, expr->left);
        assert(expr->op >= EXPR_ADD && expr->op < EXPR_ADD + 5);
        append(rt, ")%s(", operators[expr->op - EXPR_ADD]);
        sn_printDiagExpr(rt, expr->right);
        append(rt, ")");
    }
}
