// Text forms of constraint variables, expressions, conditions and influences.
#include <iostream>

#include "continuous/sorn-runt.h"
#include "model/Atom.h"
#include "model/influencePrinter.h"

void sn_printGVar(std::FILE* stream, s_GVar const* gvar) {
    if (gvar->kind == GV_CONST)
        sn_printObjet(stream, &gvar->value);
    else if (gvar->kind == GV_VARIABLE)
        std::fprintf(stream, "%s", gvar->var->nom.c_str());
    else
        std::fprintf(stream, "InTeRm%d", gvar->number);
}

namespace {

void printOperand(std::FILE* stream, s_Expr const* operand) {
    if (operand->gvar != nullptr) {
        sn_printGVar(stream, operand->gvar);
        return;
    }
    std::fprintf(stream, "(");
    sn_printExpr(stream, operand);
    std::fprintf(stream, ")");
}

char const* operatorText(int op) {
    static char const* const texts[] = {"", "", "+", "-", "*", "/", "**", "-"};
    return op >= EXPR_CONST && op <= EXPR_NEG ? texts[op] : "";
}

char const* relationText(int op) {
    static char const* const texts[] = {"", " = ", " != ", " <= ", " < ", " >= ", " > ", " in "};
    return op >= REL_EQ && op <= REL_IN ? texts[op] : "";
}

// With its current value, if it is asked for.
void printVariable(std::FILE* stream, s_Variable const* variable, bool withValues) {
    std::fprintf(stream, "%s", variable->nom.c_str());
    if (!withValues)
        return;
    std::fprintf(stream, " : ");
    sn_printObjet(stream, &variable->old);
}

void printRelation(std::FILE* stream, s_Condition const* condition, bool withValues) {
    printVariable(stream, condition->var, withValues);
    std::fprintf(stream, "%s", relationText(condition->op));
    if (condition->var2 != nullptr)
        printVariable(stream, condition->var2, withValues);
    else if (condition->value)
        sn_printObjet(stream, &*condition->value);
}

void printBracketed(std::FILE* stream, s_Condition const* condition, bool withValues);

void printConditionBody(std::FILE* stream, s_Condition const* condition, bool withValues) {
    switch (condition->kind) {
        case COND_CONST:
            std::fprintf(stream, "%s", condition->val ? "true" : "false");
            break;
        case COND_REL:
            printRelation(stream, condition, withValues);
            break;
        case COND_OR:
        case COND_AND:
            printBracketed(stream, condition->left, withValues);
            std::fprintf(stream, "%s", condition->kind == COND_OR ? " | " : " & ");
            printBracketed(stream, condition->right, withValues);
            break;
        case COND_NOT:
            std::fprintf(stream, "! ");
            printBracketed(stream, condition->left, withValues);
            break;
        case COND_ATOM:
            condition->atom->showAtom(false);
            break;
        case COND_EXPR:
            if (withValues && condition->expr->gvar->kind == GV_VARIABLE)
                printVariable(stream, condition->expr->gvar->var, true);
            else
                sn_printGVar(stream, condition->expr->gvar);
            std::fprintf(stream, " : ");
            sn_printExpr(stream, condition->expr);
            break;
        default:
            break;
    }
}

void printNamed(char const* label, s_Objet const& value) {
    std::fputs(label, stdout);
    sn_printObjet(stdout, &value);
}

void printIfSet(char const* label, std::optional<s_Objet> const& value) {
    if (value)
        printNamed(label, *value);
}

void printForms(s_Influence const* influence) {
    printIfSet(": xi ", influence->xi);
    printIfSet(": w ", influence->w);
    if (!influence->n1)
        return;
    printIfSet(": n1 ", influence->n1);
    printIfSet(": n2 ", influence->n2);
    printIfSet(": d0 ", influence->d0);
    printIfSet(": d1 ", influence->d1);
    printIfSet(": d2 ", influence->d2);
}

}  // namespace

void sn_printExpr(std::FILE* stream, s_Expr const* expr) {
    if (expr->op == EXPR_CONST || expr->op == EXPR_VAR) {
        sn_printGVar(stream, expr->gvar);
        return;
    }
    if (expr->op != EXPR_NEG)
        printOperand(stream, expr->left);
    std::fprintf(stream, "%s", operatorText(expr->op));
    printOperand(stream, expr->op == EXPR_NEG ? expr->left : expr->right);
}

char const* sn_letterOf(influType type) {
    switch (type) {
        case INF_DYNAMIC:
            return "D";
        case INF_INTEGRAL:
            return "I";
        case INF_STATIC:
            return "S";
        case INF_COUPLING:
            return "C";
        default:
            return "D2";
    }
}

namespace {

void printBracketed(std::FILE* stream, s_Condition const* condition, bool withValues) {
    if (condition == nullptr) {
        std::fprintf(stderr, "Unable to print condition (NULL Pointer)\n");
        return;
    }
    std::fprintf(stream, "(");
    printConditionBody(stream, condition, withValues);
    std::fprintf(stream, ")");
    // Required: the end of the line goes to standard output whatever the stream.
    std::cout << "\n";
}

}  // namespace

void sn_printCondition(std::FILE* stream, s_Condition const* condition) {
    printBracketed(stream, condition, false);
}

void sn_printCondValues(std::FILE* stream, s_Condition const* condition) {
    printBracketed(stream, condition, true);
}

void printInfluence(s_Influence const* influence) {
    std::printf("  ");
    if (!influence->nom.empty())
        std::printf("%s: ", influence->nom.c_str());
    if (influence->cond != nullptr) {
        std::printf("condition ");
        sn_printCondition(stdout, influence->cond);
        std::printf(" ");
    }
    std::printf("%s -%s-> %s", influence->cause->nom.c_str(), sn_letterOf(influence->type),
                influence->effect->nom.c_str());
    printNamed(": gain ", influence->gain);
    printForms(influence);
    std::printf("; delay %d, %d\n", influence->delayMin, influence->delayMax);
    printNamed("; resp. time ", influence->respTime);
    std::printf("; condHistoLn = %d;\n", influence->condHistoLn);
}
