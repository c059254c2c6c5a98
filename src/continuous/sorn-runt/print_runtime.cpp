// What the `print` command shows of a runtime: variables, influences, the causal graph, the update
// lists, the constraints.
//
// Values have two faces (see objets.h): the form for people, and bare numbers, where each variable
// gives a lower and an upper column.
#include "continuous/sorn-runt.h"

namespace {

void printNumberTwice(s_Printer const& to, double value) {
    sn_printReal(to, value);
    to.stream << " ";
    sn_printReal(to, value);
}

void printValueLine(s_Printer const& to, s_Variable const* variable, s_Objet const& value) {
    if (to.forPeople)
        to.stream << "  " << variable->nom;
    if (!variable->defined)
        to.stream << " ?";
    else if (!to.forPeople && isReal(value))
        printNumberTwice(to, value.real);
    else
        sn_printObjet(to, &value);
    to.stream << (to.forPeople ? "\n" : " ");
}

void printValues(s_Printer const& to, std::vector<s_Variable*> const& variables) {
    for (s_Variable const* variable : variables)
        sn_printVarValue(to, variable);
}

char const* rolesOf(s_runtime const* rt, s_Variable const* variable) {
    bool const display = sn_isDisplay(rt, variable) == 1;
    if (sn_isInput(rt, variable))
        return display ? "input, display; " : "input; ";
    if (sn_isMeasure(rt, variable))
        return display ? "measured, display; " : "measured; ";
    return display ? "display; " : " ";
}

void printHistory(s_Printer const& to, History<s_Objet> const& history) {
    for (int i = 0; i < history.size(); ++i) {
        sn_printObjet(to, &history[i]);
        to.stream << " * ";
    }
}

void printLabelled(s_Printer const& to, char const* label, s_Objet const& value) {
    to.stream << label;
    sn_printObjet(to, &value);
}

void printIfSet(s_Printer const& to, char const* label, std::optional<s_Objet> const& value) {
    if (value)
        printLabelled(to, label, *value);
}

// Nothing without the first numerator; a model may lack some of the rest.
void printRational(s_Printer const& to, s_Influence const* influence) {
    if (!influence->n1)
        return;
    printIfSet(to, ": n1 ", influence->n1);
    printIfSet(to, ": n2 ", influence->n2);
    printIfSet(to, ": d0 ", influence->d0);
    printIfSet(to, ": d1 ", influence->d1);
    printIfSet(to, ": d2 ", influence->d2);
}

void printDelay(s_Printer const& to, s_Influence const* influence) {
    if (influence->delayMin == influence->delayMax)
        to.stream << "; delay =" << influence->delayMin;
    else
        to.stream << "; delay in [" << influence->delayMin << ", " << influence->delayMax << "]";
}

void printRule(s_Printer const& to, s_Influence const* influence) {
    to.stream << "  ";
    if (!influence->nom.empty())
        to.stream << influence->nom << ": ";
    if (influence->cond != nullptr) {
        to.stream << "condition ";
        sn_printCondition(to, influence->cond);
        to.stream << " ";
    }
    to.stream << influence->cause->nom << " -" << sn_letterOf(influence->type) << "-> "
              << influence->effect->nom;
    printLabelled(to, ": gain", influence->gain);
    // Required: the damping goes to standard output whatever the stream.
    printIfSet({to.out, to.out, false, to.err}, ": xi ", influence->xi);
    printIfSet(to, ": w ", influence->w);
    printRational(to, influence);
    printDelay(to, influence);
    printLabelled(to, "; resp. time", influence->respTime);
    to.stream << ";\n";
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

void printInfluences(s_Printer const& to, std::vector<s_Influence*> const& influences) {
    for (s_Influence const* influence : influences)
        to.stream << nameOf(influence) << "; ";
}

void printNode(s_Printer const& to, s_Variable const* variable) {
    s_CGraph const& node = *variable->graph;
    to.stream << "  " << variable->nom;
    if (node.causes.empty()) {
        to.stream << ":\n    no causes;";
    } else {
        to.stream << ":\n    causes (" << wordOf(node.kind) << "): ";
        printInfluences(to, node.causes);
    }
    to.stream << (node.effects.empty() ? "\n    no effects;" : "\n    effects: ");
    printInfluences(to, node.effects);
    to.stream << "\n";
}

void printNames(s_Printer const& to, std::vector<s_Variable*> const& variables) {
    char const* separator = "";
    for (s_Variable const* variable : variables) {
        to.stream << separator << variable->nom;
        separator = ", ";
    }
    to.stream << ";";
}

}  // namespace

void sn_printVarNom(s_Printer const& to, s_Variable const* variable) {
    to.stream << variable->nom;
}

void sn_printVarValue(s_Printer const& to, s_Variable const* variable) {
    printValueLine(to, variable, variable->old);
}

void sn_printVarValueNV(s_Printer const& to, s_Variable const* variable) {
    printValueLine(to, variable, variable->new_);
}

void sn_printVariable(s_Printer const& to, s_runtime const* rt, s_Variable const* variable) {
    to.stream << "  " << variable->nom << ": " << rolesOf(rt, variable);
    if (variable->isParam)
        printLabelled(to, "parameter ", variable->old);
    else if (variable->domain)
        printLabelled(to, "variable", *variable->domain);
    if (variable->histLen() > 0)
        to.stream << "; history length = " << variable->histLen() << "*Ts\n";
    else
        to.stream << "; no history\n";
}

void sn_printVarHistory(s_Printer const& to, s_runtime const* rt, s_Variable const* variable) {
    if (sn_isMeasure(rt, variable)) {
        printHistory(to, variable->mesHisto);
        printLabelled(to, "\nmes: ", variable->mes);
        to.stream << "\n";
    }
    printHistory(to, variable->histo);
    printLabelled(to, "\nold: ", variable->old);
    if (!variable->isParam)
        printLabelled(to, "\nnew: ", variable->new_);
}

void sn_printInitVar(s_Printer const& to, s_InitVar const* initial) {
    to.stream << "  " << initial->var->nom;
    sn_printObjet(to, &initial->value);
    to.stream << "\n";
}

void sn_printDic(s_Printer const& to, s_runtime const* rt) {
    for (auto const& variable : rt->dico)
        sn_printVariable(to, rt, variable.get());
}

void sn_printConds(s_Printer const& to, s_runtime const* rt) {
    to.stream << "size : " << rt->condi.size() << "\n";
    for (s_Condition const* condition : rt->condi)
        sn_printCondition(to, condition);
}

void sn_printSpace(s_Printer const& to, s_runtime const* rt) {
    for (auto const& variable : rt->dico)
        if (!variable->isParam)
            sn_printVarValue(to, variable.get());
}

void sn_printInputs(s_Printer const& to, s_runtime const* rt) {
    printValues(to, rt->input);
}

void sn_printDisplays(s_Printer const& to, s_runtime const* rt) {
    printValues(to, rt->display);
}

void sn_printMeasures(s_Printer const& to, s_runtime const* rt) {
    printValues(to, rt->measure);
}

void sn_printInits(s_Printer const& to, s_runtime const* rt) {
    for (s_InitVar const& initial : rt->init)
        sn_printInitVar(to, &initial);
}

void sn_printRules(s_Printer const& to, s_runtime const* rt) {
    for (auto const& influence : rt->influ)
        printRule(to, influence.get());
}

void sn_printCGraph(s_Printer const& to, s_runtime const* rt) {
    for (auto const& variable : rt->dico)
        if (variable->graph != nullptr)
            printNode(to, variable.get());
}

void sn_printUpdateListsorn(s_Printer const& to, s_runtime const* rt) {
    if (!rt->temporal.empty()) {
        to.stream << "\n Temporal listsorn: ";
        printNames(to, rt->temporal);
    }
    to.stream << "\n Untemporal listsorn: ";
    printNames(to, rt->untemporal);
    to.stream << "\n";
}

void sn_printGlobVs(s_Printer const& to, s_runtime const* rt) {
    for (s_GVar const* gvar : rt->gV) {
        to.stream << "  ";
        sn_printGVar(to, gvar);
        if (gvar->gcIdx.size() > 1)
            to.stream << ":";
        for (std::size_t i = 1; i < gvar->gcIdx.size(); ++i)
            to.stream << " " << gvar->gcIdx[i] + 1;
        to.stream << ";\n";
    }
}

void sn_printGContr(s_Printer const& to, s_Expr const* constraint) {
    sn_printGVar(to, constraint->gvar);
    to.stream << " = ";
    sn_printExpr(to, constraint);
    to.stream << ";\n";
}

void sn_printGlobCs(s_Printer const& to, s_runtime const* rt) {
    int number = 0;
    for (s_Expr const* constraint : rt->gC) {
        to.stream << "  (" << ++number << ") ";
        sn_printGContr(to, constraint);
    }
}
