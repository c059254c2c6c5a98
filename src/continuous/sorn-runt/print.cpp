// Text forms of constraint variables, expressions, conditions and influences.
#include "continuous/sorn-runt.h"
#include "model/Atom.h"

void sn_printGVar(s_Printer const& to, s_GVar const* gvar) {
    if (gvar->kind == GV_CONST)
        sn_printObjet(to, &gvar->value);
    else if (gvar->kind == GV_VARIABLE)
        to.stream << gvar->var->nom;
    else
        to.stream << "InTeRm" << gvar->number;
}

namespace {

void printOperand(s_Printer const& to, s_Expr const* operand) {
    if (operand->gvar != nullptr) {
        sn_printGVar(to, operand->gvar);
        return;
    }
    to.stream << "(";
    sn_printExpr(to, operand);
    to.stream << ")";
}

char const* operatorText(int op) {
    static constexpr char const* const texts[] = {"", "", "+", "-", "*", "/", "**", "-"};
    return op >= EXPR_CONST && op <= EXPR_NEG ? texts[op] : "";
}

char const* relationText(int op) {
    static constexpr char const* const texts[] = {
        "", " = ", " != ", " <= ", " < ", " >= ", " > ", " in "};
    return op >= REL_EQ && op <= REL_IN ? texts[op] : "";
}

// With its current value, if it is asked for.
void printVariable(s_Printer const& to, s_Variable const* variable, bool withValues) {
    to.stream << variable->nom;
    if (!withValues)
        return;
    to.stream << " : ";
    sn_printObjet(to, &variable->old);
}

void printRelation(s_Printer const& to, s_Condition const* condition, bool withValues) {
    printVariable(to, condition->var, withValues);
    to.stream << relationText(condition->op);
    if (condition->var2 != nullptr)
        printVariable(to, condition->var2, withValues);
    else if (condition->value)
        sn_printObjet(to, &*condition->value);
}

void printBracketed(s_Printer const& to, s_Condition const* condition, bool withValues);

void printConditionBody(s_Printer const& to, s_Condition const* condition, bool withValues) {
    switch (condition->kind) {
        case COND_CONST:
            to.stream << (condition->val ? "true" : "false");
            break;
        case COND_REL:
            printRelation(to, condition, withValues);
            break;
        case COND_OR:
        case COND_AND:
            printBracketed(to, condition->left, withValues);
            to.stream << (condition->kind == COND_OR ? " | " : " & ");
            printBracketed(to, condition->right, withValues);
            break;
        case COND_NOT:
            to.stream << "! ";
            printBracketed(to, condition->left, withValues);
            break;
        case COND_ATOM:
            condition->atom->showAtom(to.out, false);
            break;
        case COND_EXPR:
            if (withValues && condition->expr->gvar->kind == GV_VARIABLE)
                printVariable(to, condition->expr->gvar->var, true);
            else
                sn_printGVar(to, condition->expr->gvar);
            to.stream << " : ";
            sn_printExpr(to, condition->expr);
            break;
        default:
            break;
    }
}

void printNamed(s_Printer const& to, char const* label, s_Objet const& value) {
    to.stream << label;
    sn_printObjet(to, &value);
}

void printIfSet(s_Printer const& to, char const* label, std::optional<s_Objet> const& value) {
    if (value)
        printNamed(to, label, *value);
}

void printForms(s_Printer const& to, s_Influence const* influence) {
    printIfSet(to, ": xi ", influence->xi);
    printIfSet(to, ": w ", influence->w);
    if (!influence->n1)
        return;
    printIfSet(to, ": n1 ", influence->n1);
    printIfSet(to, ": n2 ", influence->n2);
    printIfSet(to, ": d0 ", influence->d0);
    printIfSet(to, ": d1 ", influence->d1);
    printIfSet(to, ": d2 ", influence->d2);
}

}  // namespace

void sn_printExpr(s_Printer const& to, s_Expr const* expr) {
    if (expr->op == EXPR_CONST || expr->op == EXPR_VAR) {
        sn_printGVar(to, expr->gvar);
        return;
    }
    if (expr->op != EXPR_NEG)
        printOperand(to, expr->left);
    to.stream << operatorText(expr->op);
    printOperand(to, expr->op == EXPR_NEG ? expr->left : expr->right);
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

void printBracketed(s_Printer const& to, s_Condition const* condition, bool withValues) {
    if (condition == nullptr) {
        if (to.err != nullptr)
            *to.err << "Unable to print condition (NULL Pointer)\n";
        return;
    }
    to.stream << "(";
    printConditionBody(to, condition, withValues);
    to.stream << ")";
    // Required: the end of the line goes to standard output whatever the stream.
    to.out << "\n";
}

}  // namespace

void sn_printCondition(s_Printer const& to, s_Condition const* condition) {
    printBracketed(to, condition, false);
}

void sn_printCondValues(s_Printer const& to, s_Condition const* condition) {
    printBracketed(to, condition, true);
}

void printInfluence(std::ostream& out, s_Influence const* influence) {
    s_Printer const to{out, out, false};
    out << "  ";
    if (!influence->nom.empty())
        out << influence->nom << ": ";
    if (influence->cond != nullptr) {
        out << "condition ";
        sn_printCondition(to, influence->cond);
        out << " ";
    }
    out << influence->cause->nom << " -" << sn_letterOf(influence->type) << "-> "
        << influence->effect->nom;
    printNamed(to, ": gain ", influence->gain);
    printForms(to, influence);
    out << "; delay " << influence->delayMin << ", " << influence->delayMax << "\n";
    printNamed(to, "; resp. time ", influence->respTime);
    out << "; condHistoLn = " << influence->condHistoLn << ";\n";
}
