// `print`: what the program holds, by selector.
#include <cstdio>
#include <cstring>

#include "console/console.h"
#include "console/parameters.h"
#include "console/run.h"
#include "continuous/sorn-runt.h"
#include "hybrid/tavro-runt.h"

namespace {

using Printer = void (*)(s_Printer const&, s_runtime const*);

// A selector that shows a part of the runtime.
struct Selector {
    char const* word;     // occurs in the argument
    char const* heading;  // on the error stream
    Printer print;
    // When the list is empty, the text that stands instead; null when it cannot be told so.
    char const* none;
    bool (*isEmpty)(s_runtime const*);
};

void printConstraints(s_Printer const& to, s_runtime const* rt) {
    sn_printGlobVs(to, rt);
    to.stream << "Global constraints:\n";
    sn_printGlobCs(to, rt);
}

bool never(s_runtime const*) {
    return false;
}
bool noInputs(s_runtime const* rt) {
    return rt->input.empty();
}
bool noMeasures(s_runtime const* rt) {
    return rt->measure.empty();
}
bool noInits(s_runtime const* rt) {
    return rt->init.empty();
}

// The nominal candidate's runtime, or the model's own when there is none.
s_runtime const* shownRuntime() {
    return consoleRun->hybNT != nullptr && consoleRun->hybNT->rt != nullptr
               ? consoleRun->hybNT->rt.get()
               : consoleRun->tavro_rt;
}

void showSelected(Selector const& selector) {
    s_runtime const* rt = shownRuntime();
    if (rt == nullptr) {
        std::fprintf(stderr, "The model has no continuous runtime.\n");
        return;
    }
    if (selector.isEmpty(rt)) {
        std::fputs(selector.none, stderr);
        return;
    }
    std::fputs(selector.heading, stderr);
    selector.print(peoplePrinter(consoleRun->engine), rt);
}

// By name and, failing that, by class name.
Comp* findComponent(char const* name) {
    for (auto const& entry : consolePlant->active_comps)
        if (entry.second != nullptr && std::strcmp(entry.first, name) == 0)
            return entry.second;
    for (auto const& entry : consolePlant->active_comps)
        if (entry.second != nullptr && entry.second->className == name)
            return entry.second;
    return nullptr;
}

void showComponents(char const* arg) {
    Parameters parameters(arg);
    parameters.next();
    std::optional<std::string> const name = parameters.next();
    if (!name) {
        consoleRun->scheduler.showComps();
        return;
    }
    Comp* comp = findComponent(name->c_str());
    consoleRun->scheduler.showComp(
        comp != nullptr ? comp->getName() : name->c_str(),
        [](s_Influence const* influence) { printInfluence(consoleRun->out, influence); });
}

constexpr Selector beforeComponents[] = {
    {"dic", "Dictionary:\n", sn_printDic, nullptr, never},
    {"cond", "Conditions:\n", sn_printConds, nullptr, never},
};

constexpr Selector beforeClauses[] = {
    {"spa", "Current space:\n", sn_printSpace, nullptr, never},
    {"inp", "Inputs:\n", sn_printInputs, "No inputs.\n", noInputs},
    {"dis", "Displays:\n", sn_printDisplays, nullptr, never},
    {"mea", "Measure:\n", sn_printMeasures, "No measure variables.\n", noMeasures},
    {"inf", "Influences:\n", sn_printRules, nullptr, never},
    {"gra", "Causal graph:\n", sn_printCGraph, nullptr, never},
    {"upd", "Updating sequence: ", sn_printUpdateListsorn, nullptr, never},
    {"glo", "Global constraints variables:\n", printConstraints, nullptr, never},
};

constexpr Selector initials = {"ini", "Initializations:\n", sn_printInits, "No initializations.\n",
                               noInits};

// Shows the first selector of the list that occurs in *arg*; false when none does.
template <std::size_t Count>
bool showFirst(Selector const (&selectors)[Count], char const* arg) {
    for (Selector const& selector : selectors)
        if (std::strstr(arg, selector.word) != nullptr) {
            showSelected(selector);
            return true;
        }
    return false;
}

}  // namespace

// The order decides: a selector may occur in several words.
int snPrint(char const* arg) {
    if (arg == nullptr || *arg == '\0')
        std::fprintf(stderr, "Missing argument for print.\n");
    else if (showFirst(beforeComponents, arg))
        return 1;
    else if (std::strstr(arg, "co") != nullptr)
        showComponents(arg);
    else if (std::strstr(arg, "toms") != nullptr)
        consoleRun->scheduler.showAtoms();
    else if (showFirst(beforeClauses, arg))
        return 1;
    else if (std::strstr(arg, "cla") != nullptr) {
        std::fprintf(stderr, "Clauses:\n");
        consoleRun->scheduler.showClauses();
    } else if (std::strstr(arg, initials.word) != nullptr)
        showSelected(initials);
    else
        std::fprintf(stderr, "Can't print %s\n", arg);
    return 1;
}
