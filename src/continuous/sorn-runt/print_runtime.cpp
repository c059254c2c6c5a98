// What the `print` command shows of a runtime: variables, influences, the causal graph, the update
// lists, the constraints.
//
// Values have two faces (see objets.h): the form for people on stderr, bare numbers on any other
// stream, where each variable gives a lower and an upper column.
#include <iostream>

#include "continuous/sorn-runt.h"

namespace {

void printNumberTwice(std::FILE* stream, double value) {
    sn_printReal(stream, value);
    std::fprintf(stream, " ");
    sn_printReal(stream, value);
}

void printValueLine(std::FILE* stream, s_Variable const* variable, s_Objet const& value) {
    if (stream == stderr)
        std::fprintf(stream, "  %s", variable->nom.c_str());
    if (!variable->defined)
        std::fprintf(stream, " ?");
    else if (stream != stderr && isReal(value))
        printNumberTwice(stream, value.real);
    else
        sn_printObjet(stream, &value);
    std::fprintf(stream, stream == stderr ? "\n" : " ");
}

void printValues(std::FILE* stream, std::vector<s_Variable*> const& variables) {
    for (s_Variable const* variable : variables)
        sn_printVarValue(stream, variable);
}

char const* rolesOf(s_runtime const* rt, s_Variable const* variable) {
    bool const display = sn_isDisplay(rt, variable) == 1;
    if (sn_isInput(rt, variable))
        return display ? "input, display; " : "input; ";
    if (sn_isMeasure(rt, variable))
        return display ? "measured, display; " : "measured; ";
    return display ? "display; " : " ";
}

void printHistory(std::FILE* stream, History<s_Objet> const& history) {
    for (int i = 0; i < history.size(); ++i) {
        sn_printObjet(stream, &history[i]);
        std::fprintf(stream, " * ");
    }
}

void printLabelled(std::FILE* stream, char const* label, s_Objet const& value) {
    std::fputs(label, stream);
    sn_printObjet(stream, &value);
}

void printIfSet(std::FILE* stream, char const* label, std::optional<s_Objet> const& value) {
    if (value)
        printLabelled(stream, label, *value);
}

// Nothing without the first numerator; a model may lack some of the rest.
void printRational(std::FILE* stream, s_Influence const* influence) {
    if (!influence->n1)
        return;
    printIfSet(stream, ": n1 ", influence->n1);
    printIfSet(stream, ": n2 ", influence->n2);
    printIfSet(stream, ": d0 ", influence->d0);
    printIfSet(stream, ": d1 ", influence->d1);
    printIfSet(stream, ": d2 ", influence->d2);
}

void printDelay(std::FILE* stream, s_Influence const* influence) {
    if (influence->delayMin == influence->delayMax)
        std::fprintf(stream, "; delay =%d", influence->delayMin);
    else
        std::fprintf(stream, "; delay in [%d, %d]", influence->delayMin, influence->delayMax);
}

void printRule(std::FILE* stream, s_Influence const* influence) {
    std::fprintf(stream, "  ");
    if (!influence->nom.empty())
        std::fprintf(stream, "%s: ", influence->nom.c_str());
    if (influence->cond != nullptr) {
        std::fprintf(stream, "condition ");
        sn_printCondition(stream, influence->cond);
        std::fprintf(stream, " ");
    }
    std::fprintf(stream, "%s -%s-> %s", influence->cause->nom.c_str(), sn_letterOf(influence->type),
                 influence->effect->nom.c_str());
    printLabelled(stream, ": gain", influence->gain);
    // Required: the damping goes to standard output whatever the stream.
    printIfSet(stdout, ": xi ", influence->xi);
    printIfSet(stream, ": w ", influence->w);
    printRational(stream, influence);
    printDelay(stream, influence);
    printLabelled(stream, "; resp. time", influence->respTime);
    std::fprintf(stream, ";\n");
}

char const* wordOf(influType type) {
    switch (type) {
        case INF_DYNAMIC:
            return "dynamic";
        case INF_INTEGRAL:
            return "integral";
        case INF_STATIC:
            return "static";
        case INF_DYNAMIC2:
            return "dynamic2";
        default:
            return "";
    }
}

std::string nameOf(s_Influence const* influence) {
    return influence->nom.empty() ? influence->cause->nom + "->" + influence->effect->nom
                                  : influence->nom;
}

void printInfluences(std::FILE* stream, std::vector<s_Influence*> const& influences) {
    for (s_Influence const* influence : influences)
        std::fprintf(stream, "%s; ", nameOf(influence).c_str());
}

void printNode(std::FILE* stream, s_Variable const* variable) {
    s_CGraph const& node = *variable->graph;
    std::fprintf(stream, "  %s", variable->nom.c_str());
    if (node.causes.empty()) {
        std::fprintf(stream, ":\n    no causes;");
    } else {
        std::fprintf(stream, ":\n    causes (%s): ", wordOf(node.kind));
        printInfluences(stream, node.causes);
    }
    std::fprintf(stream, node.effects.empty() ? "\n    no effects;" : "\n    effects: ");
    printInfluences(stream, node.effects);
    std::fprintf(stream, "\n");
}

void printNames(std::FILE* stream, std::vector<s_Variable*> const& variables) {
    char const* separator = "";
    for (s_Variable const* variable : variables) {
        std::fprintf(stream, "%s%s", separator, variable->nom.c_str());
        separator = ", ";
    }
    std::fprintf(stream, ";");
}

}  // namespace

void sn_printVarNom(std::FILE* stream, s_Variable const* variable) {
    std::fprintf(stream, "%s", variable->nom.c_str());
}

void sn_printVarValue(std::FILE* stream, s_Variable const* variable) {
    printValueLine(stream, variable, variable->old);
}

void sn_printVarValueNV(std::FILE* stream, s_Variable const* variable) {
    printValueLine(stream, variable, variable->new_);
}

void sn_printVariable(std::FILE* stream, s_runtime const* rt, s_Variable const* variable) {
    std::fprintf(stream, "  %s: %s", variable->nom.c_str(), rolesOf(rt, variable));
    if (variable->isParam)
        printLabelled(stream, "parameter ", variable->old);
    else if (variable->domain)
        printLabelled(stream, "variable", *variable->domain);
    if (variable->histLen() > 0)
        std::fprintf(stream, "; history length = %d*Ts\n", variable->histLen());
    else
        std::fprintf(stream, "; no history\n");
}

void sn_printVarHistory(std::FILE* stream, s_runtime const* rt, s_Variable const* variable) {
    if (sn_isMeasure(rt, variable)) {
        printHistory(stream, variable->mesHisto);
        printLabelled(stream, "\nmes: ", variable->mes);
        std::fprintf(stream, "\n");
    }
    printHistory(stream, variable->histo);
    printLabelled(stream, "\nold: ", variable->old);
    if (!variable->isParam)
        printLabelled(stream, "\nnew: ", variable->new_);
}

void sn_printInitVar(std::FILE* stream, s_InitVar const* initial) {
    std::fprintf(stream, "  %s", initial->var->nom.c_str());
    sn_printObjet(stream, &initial->value);
    std::fprintf(stream, "\n");
}

void sn_printDic(std::FILE* stream, s_runtime const* rt) {
    for (auto const& variable : rt->dico)
        sn_printVariable(stream, rt, variable.get());
}

void sn_printConds(std::FILE* stream, s_runtime const* rt) {
    std::fprintf(stream, "size : %d\n", static_cast<int>(rt->condi.size()));
    for (s_Condition const* condition : rt->condi)
        sn_printCondition(stream, condition);
}

void sn_printSpace(std::FILE* stream, s_runtime const* rt) {
    for (auto const& variable : rt->dico)
        if (!variable->isParam)
            sn_printVarValue(stream, variable.get());
}

void sn_printInputs(std::FILE* stream, s_runtime const* rt) {
    printValues(stream, rt->input);
}

void sn_printDisplays(std::FILE* stream, s_runtime const* rt) {
    printValues(stream, rt->display);
}

void sn_printMeasures(std::FILE* stream, s_runtime const* rt) {
    printValues(stream, rt->measure);
}

void sn_printInits(std::FILE* stream, s_runtime const* rt) {
    for (s_InitVar const& initial : rt->init)
        sn_printInitVar(stream, &initial);
}

void sn_printRules(std::FILE* stream, s_runtime const* rt) {
    for (auto const& influence : rt->influ)
        printRule(stream, influence.get());
}

void sn_printCGraph(std::FILE* stream, s_runtime const* rt) {
    for (auto const& variable : rt->dico)
        if (variable->graph != nullptr)
            printNode(stream, variable.get());
}

void sn_printUpdateListsorn(std::FILE* stream, s_runtime const* rt) {
    if (!rt->temporal.empty()) {
        std::fprintf(stream, "\n Temporal listsorn: ");
        printNames(stream, rt->temporal);
    }
    std::fprintf(stream, "\n Untemporal listsorn: ");
    printNames(stream, rt->untemporal);
    std::fprintf(stream, "\n");
}

void sn_printGlobVs(std::FILE* stream, s_runtime const* rt) {
    for (s_GVar const* gvar : rt->gV) {
        std::fprintf(stream, "  ");
        sn_printGVar(stream, gvar);
        if (gvar->gcIdx.size() > 1)
            std::fprintf(stream, ":");
        for (std::size_t i = 1; i < gvar->gcIdx.size(); ++i)
            std::fprintf(stream, " %d", gvar->gcIdx[i] + 1);
        std::fprintf(stream, ";\n");
    }
}

void sn_printGContr(std::FILE* stream, s_Expr const* constraint) {
    sn_printGVar(stream, constraint->gvar);
    std::fprintf(stream, " = ");
    sn_printExpr(stream, constraint);
    std::fprintf(stream, ";\n");
}

void sn_printGlobCs(std::FILE* stream, s_runtime const* rt) {
    int number = 0;
    for (s_Expr const* constraint : rt->gC) {
        std::fprintf(stream, "  (%d) ", ++number);
        sn_printGContr(stream, constraint);
    }
}
