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

void writeCondition(std::string& text, s_Condition const* condition);
void writeExpr(std::string& text, s_Expr const* expr);

void writeValue(std::string& text, s_Objet const& value) {
    if (isRange(value))
        text += shortText(value.rng.inf) + " " + shortText(value.rng.sup);
    else
        text += shortText(sn_infOf(value));
}

// Required: two operators have no text, and the right-hand side is never written.
void writeRelation(std::string& text, s_Condition const* condition) {
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
    text += condition->var->nom + relation;
}

void writeOperands(std::string& text, s_Condition const* condition, char const* separator) {
    if (condition->left != nullptr) {
        writeCondition(text, condition->left);
        text += separator;
    }
    if (condition->right != nullptr)
        writeCondition(text, condition->right);
}

void writeBody(std::string& text, s_Condition const* condition) {
    switch (condition->kind) {
        case COND_CONST:
            text += condition->val == 1 ? "true" : "false";
            break;
        case COND_REL:
            writeRelation(text, condition);
            break;
        case COND_OR:
            writeOperands(text, condition, " | ");
            break;
        case COND_AND:
            writeOperands(text, condition, " & ");
            break;
        case COND_NOT:
            text += "! ";
            writeCondition(text, condition->left);
            break;
        case COND_ATOM:
            text += std::string("(") + condition->atom->getId() + ")";
            writeOperands(text, condition, " | ");
            break;
        case COND_EXPR:
            writeExpr(text, condition->expr);
            writeRelation(text, condition);
            break;
        default:
            break;
    }
}

void writeCondition(std::string& text, s_Condition const* condition) {
    text += "(";
    writeBody(text, condition);
    text += ")";
}

void writeExpr(std::string& text, s_Expr const* expr) {
    static constexpr char const* operators[] = {"+", "-", "*", "/", "**"};
    if (expr->op == EXPR_CONST) {
        writeValue(text, expr->gvar->value);
    } else if (expr->op == EXPR_VAR) {
        text += expr->gvar->var->nom;
    } else if (expr->op == EXPR_NEG) {
        text += "-(";
        writeExpr(text, expr->left);
        text += ")";
    } else {
        text += "(";
        writeExpr(text, expr->left);
        assert(expr->op >= EXPR_ADD && expr->op < EXPR_ADD + 5);
        text += std::string(")") + operators[expr->op - EXPR_ADD] + "(";
        writeExpr(text, expr->right);
        text += ")";
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
        rt->diagBuf += "[";
        for (auto const& suspect : leaf.conflictSet) {
            if (!suspect->absent)
                addBridgeConflict(rt, suspect->influence->cond, existingConflicts);
            printConflict(rt, suspect.get());
        }
        rt->diagBuf += "]";
    }
    if (!rt->engine->rules.suspects)
        return;
    for (Leaf const& leaf : leaves)
        for (auto const& suspect : leaf.conflictSet)
            addDoubtedModes(rt, *suspect);
}

void printConflict(s_runtime* rt, Conflict const* conflict) {
    if (conflict == nullptr) {
        rt->engine->err << "Unable to print conflict (NULL Pointer)\n";
        return;
    }
    rt->diagBuf += "{" + conflict->name + "," + std::to_string(conflict->delay) + "," +
                   conditionText(*conflict) + "}";
}

std::string conditionText(Conflict const& conflict) {
    std::string const text = conditionText(conflict.influence->cond);
    return conflict.absent ? "(! " + text + ")" : text;
}

std::string conditionText(s_Condition const* condition) {
    if (condition == nullptr)
        return "()";
    std::string text;
    writeCondition(text, condition);
    return text;
}

void sn_printDiagCond(s_runtime* rt, s_Condition const* condition) {
    writeCondition(rt->diagBuf, condition);
}

void sn_printDiagExpr(s_runtime* rt, s_Expr const* expr) {
    writeExpr(rt->diagBuf, expr);
}
