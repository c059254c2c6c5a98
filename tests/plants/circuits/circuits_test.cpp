// Circuits with a stuck gate: the explanations that a run with the sharp rules gives, beside all
// gates that explain the outputs by a simulation of the netlist alone.
//
// The inputs and the outputs are seen, the wires between are not. Where the outputs are those of a
// sound circuit nothing is to be explained; otherwise every set of the fewest stuck gates that
// explains them is to come out, and nothing else.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <random>
#include <set>
#include <sstream>

#include "language/language.h"
#include "run/build_plant.h"
#include "run/library_host.h"
#include "run/stepwise_run.h"

namespace {

using Values = std::map<std::string, bool>;
using Names = std::vector<std::string>;
using Explanations = std::set<std::set<std::string>>;  // each the modes that are not ok

struct Gate {
    std::string name, operation;
    Names feeds;
};

Names rest(std::istream& words) {
    return {std::istream_iterator<std::string>(words), std::istream_iterator<std::string>()};
}

// ---- The netlist, and what it does ----

class Netlist {
public:
    explicit Netlist(std::string const& path) {
        std::ifstream file(path);
        EXPECT_TRUE(file) << path;
        for (std::string line; std::getline(file, line);) {
            std::istringstream words(line.substr(0, line.find('#')));
            std::string first, operation;
            if (!(words >> first))
                continue;
            if (first == "inputs")
                inputs = rest(words);
            else if (first == "outputs")
                outputs = rest(words);
            else if (words >> operation)
                gates.push_back({first, operation, rest(words)});
        }
    }

    // Of all wires, with the values of those that are stuck; gates stand behind what feeds them.
    Values simulate(Values values, Values const& stuck) const {
        for (Gate const& gate : gates) {
            auto const held = stuck.find(gate.name);
            values[gate.name] = held != stuck.end() ? held->second : valueOf(gate, values);
        }
        return values;
    }
    Values seen(Values const& given, Values const& stuck = {}) const {
        Values const all = simulate(given, stuck);
        Values found;
        for (std::string const& output : outputs)
            found[output] = all.at(output);
        return found;
    }
    // By each gate that may be stuck, one at a time: what can be seen, and what explains it.
    std::map<Values, Explanations> singleDiagnoses(Values const& given) const {
        std::map<Values, Explanations> all;
        for (Gate const& gate : gates)
            for (bool const at : {false, true})
                all[seen(given, {{gate.name, at}})].insert(modesOf({{gate.name, at}}));
        all[seen(given)] = {{}};  // what is sound needs no explanation
        return all;
    }
    // By all ways in which each gate may be sound or stuck: whatever can be seen, and every set of
    // the fewest stuck gates that explains it.
    std::map<Values, Explanations> leastDiagnoses(Values const& given) const {
        std::map<Values, Explanations> all;
        std::vector<Values> ways{{}};
        for (Gate const& gate : gates)
            for (std::size_t known = ways.size(), i = 0; i < known; ++i)
                for (bool const at : {false, true}) {
                    ways.push_back(ways[i]);
                    ways.back()[gate.name] = at;
                }
        for (Values const& stuck : ways) {
            Explanations& found = all[seen(given, stuck)];
            if (!found.empty() && found.begin()->size() > stuck.size())
                found.clear();
            if (found.empty() || found.begin()->size() == stuck.size())
                found.insert(modesOf(stuck));
        }
        return all;
    }

    Names inputs, outputs;
    std::vector<Gate> gates;

private:
    static std::set<std::string> modesOf(Values const& stuck) {
        std::set<std::string> modes;
        for (auto const& [gate, at] : stuck)
            modes.insert("g" + gate + ".mode=" + (at ? "stuck_high" : "stuck_low"));
        return modes;
    }
    static bool valueOf(Gate const& gate, Values const& values) {
        long const high = std::count_if(gate.feeds.begin(), gate.feeds.end(),
                                        [&](std::string const& feed) { return values.at(feed); });
        bool const all = high == static_cast<long>(gate.feeds.size());
        std::map<std::string, bool> const results = {
            {"and", all},       {"nand", !all},         {"or", high > 0},
            {"nor", high == 0}, {"xor", high % 2 == 1}, {"xnor", high % 2 == 0},
            {"not", high == 0}, {"buf", high == 1}};
        return results.at(gate.operation);
    }
};

// ---- The run ----

class Files : public SourceReader {
public:
    std::optional<std::string> read(std::string const& path) override {
        std::ifstream file(path, std::ios::binary);
        return std::string{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
};

std::string const directory = TAVRO_SOURCE "/plants/circuits/";

class Circuit {
public:
    explicit Circuit(std::string const& name)
        : netlist(directory + name + ".net"),
          plant(built(directory + name + ".plant")),
          names(*plant) {}

    // The modes of each candidate that are not ok.
    Explanations answered(Values const& given, Values const& seen) const {
        StepwiseRun run(*plant, names, {.rules = "sharp"});
        run.start({});
        run.step({});
        tavro::Line line;
        add(line, "in", given);
        add(line, "g", seen);
        Explanations found;
        for (tavro::Candidate const& candidate : run.step(line).candidates) {
            std::set<std::string> broken;
            for (auto const& [variable, mode] : candidate.modes)
                if (mode != "ok")
                    broken.insert(variable + "=" + mode);
            EXPECT_TRUE(found.insert(broken).second) << "one answer twice";
        }
        return found;
    }
    Netlist const netlist;

private:
    std::unique_ptr<Plant> built(std::string const& path) {
        Files files;
        PlantFile const file(path, files);
        EXPECT_TRUE(file.isSound()) << rendered(file.messages(), file.sources());
        return buildPlant(file.source(), host);
    }
    static void add(tavro::Line& line, char const* kind, Values const& values) {
        for (auto const& [name, high] : values)
            line.observations.push_back(kind + name + (high ? ".out=high" : ".out=low"));
    }

    Host host;
    std::unique_ptr<Plant> plant;
    PlantNames names;
};

void expectAnswers(Circuit const& circuit, Values const& given,
                   std::map<Values, Explanations> const& diagnoses) {
    for (auto const& [seen, explanations] : diagnoses) {
        std::string one;
        for (std::string const& mode : *explanations.begin())
            one += mode + " ";
        SCOPED_TRACE(one.empty() ? "sound" : one);
        EXPECT_EQ(circuit.answered(given, seen), explanations);
    }
}

Values valuesOf(unsigned bits, Names const& inputs) {
    Values given;
    for (std::size_t i = 0; i < inputs.size(); ++i)
        given[inputs[i]] = (bits >> i) % 2 == 1;
    return given;
}

Values drawn(Netlist const& netlist, unsigned seed) {
    std::minstd_rand dice(seed);
    Values given;
    for (std::string const& input : netlist.inputs)
        given[input] = (dice() >> 8) % 2 == 1;
    return given;
}

// ---- Tests ----

// All inputs, and all that can be seen of them, whatever it takes.
TEST(CircuitsTest, EveryLeastDiagnosisOfC17) {
    Circuit const circuit("c17");
    std::map<std::size_t, int> readings;  // by how many stuck gates they take
    for (unsigned bits = 0; bits < 32; ++bits) {
        SCOPED_TRACE("inputs " + std::to_string(bits));
        Values const given = valuesOf(bits, circuit.netlist.inputs);
        auto const diagnoses = circuit.netlist.leastDiagnoses(given);
        EXPECT_EQ(diagnoses.size(), 4U);
        expectAnswers(circuit, given, diagnoses);
        for (auto const& entry : diagnoses)
            ++readings[entry.second.begin()->size()];
    }
    EXPECT_EQ(readings.at(0), 32);
    EXPECT_GE(readings.at(1), 1);
    EXPECT_GE(readings.at(2), 1);
}

// 160 gates, whose 36 inputs are drawn.
TEST(CircuitsTest, EveryStuckGateOfC432) {
    Circuit const circuit("c432");
    for (unsigned const seed : {1U, 2U}) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Values const given = drawn(circuit.netlist, seed);
        auto const diagnoses = circuit.netlist.singleDiagnoses(given);
        EXPECT_GE(diagnoses.size(), 10U);
        expectAnswers(circuit, given, diagnoses);
    }
}

}  // namespace
