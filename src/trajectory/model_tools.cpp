// Building the Graphviz text.
#include "trajectory/model_tools.h"

#include <initializer_list>
#include <iomanip>
#include <sstream>
#include <string_view>

#include "model/Comprt.h"
#include "model/StateVar.h"
#include "model/Transitionrt.h"
#include "model/labels.h"
#include "support/host.h"
#include "trajectory/Trajectoryrt.h"

namespace {

void writeFile(Host& host, std::string const& name, std::string const& text) {
    host.write(name + ".dot", text);
}

// With two digits behind the point.
std::string fixed(double value) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(2) << value;
    return text.str();
}

// In the shortest of the usual forms, with six digits.
std::string general(double value) {
    std::ostringstream text;
    text << value;
    return text.str();
}

void append(std::string& text, std::initializer_list<std::string_view> parts) {
    for (std::string_view const part : parts)
        text += part;
}

std::string transitionText(Transition const& transition) {
    std::string text, label;
    for (auto const& [sign, atom] : transition.pre->getAllSignedAtoms()) {
        if (atom->getStateVar() == transition.modeVar)
            append(text, {atom->value, " -> "});
        else if (sign && atom->getVarType() == typeCommand)
            label = atom->value;
    }
    if (transition.post)
        for (Atom const* atom : transition.post->getAllAtoms())
            if (atom->getStateVar() == transition.modeVar)
                append(text, {atom->value, " [ "});
    if (transition.type == transFail)
        text += "style=dotted,";
    append(text, {" label = \"", label, " (", fixed(transition.proba), ")\" ];\n\t"});
    return text;
}

// Calls *act* with each mode that holds at a step of the trajectory.
template <typename Act>
void forEachMode(State const& state, Act act) {
    for (auto const& entry : state.elts)
        if (entry.second != nullptr && entry.second->getVarType() == typeMode &&
            entry.second->evalTrajEl())
            act(*entry.second);
}

std::string componentColumn(Trajectory const& trajectory) {
    std::string text = "\n\t{\n\tnode [shape=plaintext];\n\t{rank=same; time;";
    if (State const* first = trajectory.getState(trajectory.firstTime))
        for (auto const& entry : first->comps)
            if (entry.second != nullptr)
                append(text, {" \"", entry.second->getName(), "\";"});
    text += "}\n\t}\n\t";
    return text;
}

std::string timeLine(Trajectory const& trajectory) {
    std::string text = "{\n\t\tnode [shape=plaintext];\n\t";
    for (int k = trajectory.firstTime; k <= trajectory.currentTime; ++k)
        append(text, {std::to_string(k), " [label = \"", std::to_string(k), " (",
                      general(trajectory.getTimeCorr(k)), ")\"];\n\t"});
    text += "\ttime";
    for (int k = trajectory.firstTime; k <= trajectory.currentTime; ++k)
        append(text, {" -> ", std::to_string(k)});
    text += "}\n\tnode [ shape=ellipse, style=filled ];\n\t";
    return text;
}

std::string ranks(Trajectory const& trajectory) {
    std::string text;
    for (auto const& [step, state] : trajectory.states) {
        std::string const suffix = std::to_string(step);
        append(text, {"{rank = same; ", suffix, ";"});
        forEachMode(*state, [&](TrajEl const& element) {
            append(text, {" ", makeNodeNameWithLabel(element.atom, suffix)});
        });
        text += "}\n\t";
    }
    return text;
}

char const* edgeStyle(Transition const& transition) {
    if (transition.type == transFail)
        return " [ color = coral ]";
    return transition.idle ? " [style = dotted ]" : "";
}

std::string edgesFrom(Trajectory const& trajectory, TrajEl const& element, int step) {
    int const next = trajectory.getNext(element.getStateVar(), step);
    std::string text;
    if (next == 0)
        return text;
    for (auto const& entry : element.nextTrans) {
        Transition const* transition = entry.second;
        if (transition == nullptr || transition->postMode == nullptr)
            continue;
        append(text, {makeNodeName(transition->preMode, std::to_string(step)), " -> ",
                      makeNodeName(transition->postMode, std::to_string(next)),
                      edgeStyle(*transition), ";\n\t"});
    }
    return text;
}

std::string edges(Trajectory const& trajectory) {
    std::string text;
    for (auto const& [step, state] : trajectory.states)
        forEachMode(*state, [&, step = step](TrajEl const& element) {
            // An edge that is not seen keeps the columns in line.
            if (step == trajectory.firstTime)
                append(text, {element.atom->getVarComp()->getName(), " -> ",
                              makeNodeName(element.atom, std::to_string(step)),
                              " [ style = invis ];\n\t"});
            text += edgesFrom(trajectory, element, step);
        });
    return text;
}

}  // namespace

std::string makeNodeName(Atom const* atom, std::string const& suffix) {
    std::string name;
    append(name, {atom->getVarComp()->getName(), "_", atom->value, suffix});
    return name;
}

std::string makeNodeNameWithLabel(Atom const* atom, std::string const& suffix) {
    std::string text;
    append(text, {makeNodeName(atom, suffix), " [label=\"", atom->value, "\"];"});
    return text;
}

void toDot(Host& host, Comp const* comp) {
    host.out() << "[model_tools] --> graphing component " << comp->getName() << "\n";
    std::string text;
    append(text, {"digraph ", comp->getName(),
                  " {\n\trankdir=TB;\n\tsize=\"8,5\"\n\torientation=portrait;\n\tnode [shape = "
                  "circle];\n\t"});
    for (auto const& transition : comp->transitions)
        text += transitionText(*transition);
    text += "}";
    writeFile(host, comp->getName(), text);
}

std::string graphOf(Trajectory const& trajectory, std::string const& name) {
    std::string text;
    append(text, {"digraph ", name,
                  " {\n\trankdir=LR;\n\tranksep=1;\n\tsize=\"10,5\"\n\torientation=land;\n\t",
                  componentColumn(trajectory), timeLine(trajectory), ranks(trajectory),
                  edges(trajectory), "}\n"});
    return text;
}

void toDot(Host& host, Trajectory const* trajectory, std::string const& name) {
    trajectory->showTrajectoryTransitions(host.out());
    writeFile(host, name, graphOf(*trajectory, name));
}
