// A plant as graphs.
#include <algorithm>

#include "language/describe.h"
#include "language/describe_parts.h"
#include "support/numbers.h"

namespace {

// As a text of the language of Graphviz.
std::string quoted(std::string const& text) {
    std::string result = "\"";
    for (char const c : text) {
        if (c == '"' || c == '\\')
            result += '\\';
        result += c;
    }
    return result.append("\"");
}

void edge(std::string& dot, std::string const& from, std::string const& to,
          std::string const& label, char const* style) {
    dot.append("  ").append(quoted(from)).append(" -> ").append(quoted(to));
    dot.append(" [label=").append(quoted(label)).append(style).append("];\n");
}

std::string opened(std::string const& name) {
    std::string dot = "digraph ";
    dot.append(quoted(name)).append(" {\n  rankdir=LR;\n  node [fontname=\"sans-serif\"];\n");
    return dot.append("  edge [fontname=\"sans-serif\", fontsize=10];\n");
}

// What is measured has two circles, an input a box.
Picture causalGraph(FlatPlant const& plant) {
    std::string dot = opened(plant.name);
    for (std::size_t i = 0; i < plant.quantities.size(); ++i) {
        FlatQuantity const& own = plant.quantities[i];
        auto const isIn = [i](std::vector<QuantityRef> const& list) {
            return std::find(list.begin(), list.end(), static_cast<QuantityRef>(i)) != list.end();
        };
        if (own.isParameter)
            continue;
        dot.append("  ").append(quoted(plant.fullName(own)));
        dot.append(isIn(plant.measures) ? " [peripheries=2];\n"
                   : isIn(plant.inputs) ? " [shape=box];\n"
                                        : ";\n");
    }
    for (FlatInfluence const& influence : plant.influences)
        if (!plant.quantity(influence.cause).isParameter)
            edge(dot, plant.fullName(plant.quantity(influence.cause)),
                 plant.fullName(plant.quantity(influence.effect)), influence.name,
                 influence.when ? ", style=dashed" : "");
    return {"causal", dot.append("}\n")};
}

Picture modesOf(FlatPlant const& plant, ChoiceRef choice) {
    std::string const name = plant.fullName(plant.choice(choice));
    std::string dot = opened(name);
    FlatChoice const& own = plant.choice(choice);
    for (std::size_t i = 0; i < own.values.size(); ++i)
        dot.append("  ")
            .append(quoted(own.values[i].name))
            .append(static_cast<int>(i) == own.start ? " [style=bold];\n" : ";\n");
    for (FlatMove const& move : plant.moves)
        if (move.to.choice == choice && move.kind != MoveKind::idle)
            edge(dot, valueName(plant, move.from), valueName(plant, move.to),
                 guardOf(plant, move).append(" ").append(shortText(move.probability)),
                 move.kind == MoveKind::fault ? ", color=red, style=dashed" : "");
    return {name, dot.append("}\n")};
}

}  // namespace

std::vector<Picture> picturesOf(FlatPlant const& plant) {
    std::vector<Picture> pictures;
    if (plant.isContinuous())
        pictures.push_back(causalGraph(plant));
    for (ChoiceRef i = 0; i < static_cast<int>(plant.choices.size()); ++i)
        if (plant.choice(i).kind == ChoiceKind::mode)
            pictures.push_back(modesOf(plant, i));
    return pictures;
}
