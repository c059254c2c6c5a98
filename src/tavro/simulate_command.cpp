// `tavro simulate FILE`: a true run of a plant, as data that a run of the plant can be given.
#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <sstream>

#include "language/file_reader.h"
#include "language/language.h"
#include "model/Comprt.h"
#include "model/labels.h"
#include "run/build_plant.h"
#include "tavro/commands.h"
#include "tavro/truth_file.h"
#include "tavro/validators.h"

namespace {

struct Request {
    std::string plant;
    std::shared_ptr<std::vector<std::string>> settings;
    int steps = 0;
    std::uint64_t seed = 1;
    double noise = 0.0;
    std::string uncertainty = "constant";
    std::vector<std::string> faults, commands, inputs;
    std::string inputFile, output;
    bool csv = false;
};

// A mistake of the request that the plant alone can show, and the status that it leads to.
struct Refused {
    int status;
    std::string text;
};

std::map<std::string, truth::Uncertainty> const uncertainties = {
    {"middle", truth::Uncertainty::midpoint},
    {"constant", truth::Uncertainty::constant},
    {"redrawn", truth::Uncertainty::redrawn}};

// ---- Values that are asked for by name ----

// Of what is asked for as *word* and is not among *known*.
Refused unknown(std::string const& what, std::string const& word,
                std::vector<std::string> const& known) {
    std::string const all = known.empty() ? "the plant has none" : "write " + oneOf(known);
    return {usageIsWrong, "there is no " + what + " " + word + ": " + suggestion(word, known, all)};
}

std::vector<std::string> idsOf(Plant const& plant, char const* type) {
    std::vector<std::string> ids;
    for (StateVar const* variable : plant.stateVars)
        if (variable->getType() == type)
            for (Atom const* atom : variable->getAtomLinks())
                ids.push_back(atom->id);
    return ids;
}

Atom* atomOf(Plant const& plant, std::string const& id, char const* type, char const* what) {
    for (StateVar const* variable : plant.stateVars)
        if (variable->getType() == type)
            for (Atom* atom : variable->getAtomLinks())
                if (atom->id == id)
                    return atom;
    throw unknown(what, id, idsOf(plant, type));
}

int wholeNumber(std::string const& text, std::string const& word) {
    std::size_t used = 0;
    try {
        int const number = std::stoi(text, &used);
        if (used == text.size() && number >= 0)
            return number;
    } catch (std::logic_error const&) {
    }
    throw Refused{usageIsWrong, word + ": behind @ stands a step, as in @22"};
}

// "mode@step"
std::pair<Atom*, int> dated(Plant const& plant, std::string const& word, char const* type,
                            char const* what) {
    std::size_t const at = word.rfind('@');
    if (at == std::string::npos)
        throw Refused{usageIsWrong, word + ": say at which step, as in " + word + "@22"};
    return {atomOf(plant, word.substr(0, at), type, what), wholeNumber(word.substr(at + 1), word)};
}

truth::Setting settingOf(Request const& request, Plant const& plant) {
    truth::Setting setting;
    setting.seed = request.seed;
    setting.noise = request.noise;
    setting.uncertainty = uncertainties.at(request.uncertainty);
    for (std::string const& word : request.faults) {
        auto const [mode, step] = dated(plant, word, typeMode, "mode");
        setting.faults.push_back({mode, step});
    }
    for (std::string const& word : request.commands) {
        auto const [command, step] = dated(plant, word, typeCommand, "command");
        setting.orders.push_back({command, step});
    }
    return setting;
}

// ---- Inputs ----

// The inputs of each step: those of a file, a line per step whose last one stays, over constants.
class Inputs {
public:
    Inputs(Request const& request, Plant const& plant) {
        if (plant.tavro_rt != nullptr)
            for (s_Variable const* input : plant.tavro_rt->input)
                names.push_back(input->nom);
        takeConstants(request.inputs);
        if (names.empty() && !request.inputFile.empty())
            throw Refused{usageIsWrong, "the plant has no inputs: leave out --inputs"};
        if (!request.inputFile.empty())
            readFile(request.inputFile);
        else if (constants.size() < names.size())
            throw Refused{usageIsWrong, "the plant has the inputs " + oneOf(names) +
                                            ": give each one as --input NAME=VALUE, or all of "
                                            "them with --inputs FILE"};
    }

    std::vector<double> at(int step) const {
        if (!lines.empty())
            return lines[std::min(static_cast<std::size_t>(step), lines.size() - 1)];
        std::vector<double> values;
        for (std::string const& name : names)
            values.push_back(constants.at(name));
        return values;
    }

private:
    void takeConstants(std::vector<std::string> const& words) {
        for (std::string const& word : words) {
            std::size_t const equals = word.find('=');
            std::string const name = word.substr(0, equals);
            char* end = nullptr;
            double const value =
                equals == std::string::npos ? NAN : std::strtod(word.c_str() + equals + 1, &end);
            if (!std::isfinite(value) || end == nullptr || *end != '\0')
                throw Refused{usageIsWrong, word + ": write NAME=VALUE, with a number"};
            if (std::find(names.begin(), names.end(), name) == names.end())
                throw unknown("input", name, names);
            constants[name] = value;
        }
    }
    void readFile(std::string const& path) {
        FileReader reader;
        std::optional<std::string> const text = reader.read(path);
        if (!text)
            throw Refused{dataIsWrong, "can't read file " + path};
        std::istringstream file(*text);
        int number = 0;
        for (std::string line; std::getline(file, line);) {
            ++number;
            std::istringstream words(line);
            std::vector<double> values(names.size());
            for (double& value : values)
                if (!(words >> value))
                    throw Refused{dataIsWrong, path + ":" + std::to_string(number) + ": " +
                                                   std::to_string(names.size()) +
                                                   " numbers are expected, of " + oneOf(names)};
            lines.push_back(values);
        }
        if (lines.empty())
            throw Refused{dataIsWrong, path + " is empty"};
    }

    std::vector<std::string> names;
    std::map<std::string, double> constants;
    std::vector<std::vector<double>> lines;
};

// ---- The run ----

std::unique_ptr<TruthWriter> writerFor(Request const& request, Plant const& plant) {
    if (plant.tavro_rt == nullptr)
        return std::make_unique<ScenarioFile>(plant);
    if (request.csv)
        return std::make_unique<TruthTable>(plant);
    return std::make_unique<MeasureFile>(plant);
}

void simulate(Request const& request, Plant const& plant, std::ostream& out) {
    Inputs const inputs(request, plant);
    truth::Simulator run(plant, settingOf(request, plant));
    auto const writer = writerFor(request, plant);
    out << writer->heading();
    run.start(inputs.at(0));
    out << writer->line(run);
    while (run.now() < request.steps && out) {
        run.step(inputs.at(run.now() + 1));
        out << writer->line(run);
    }
    for (truth::Strike const& strike : run.modes().struck())
        std::cerr << "tavro simulate: " << strike.mode->id << " from step " << strike.step << "\n";
    if (run.modes().struck().size() < request.faults.size())
        std::cerr << "tavro simulate: not every fault has struck: a failure of the plant waits "
                     "until its guard holds\n";
}

int writeRun(Request const& request, Plant const& plant) {
    std::ofstream file;
    if (!request.output.empty())
        file.open(request.output);
    std::ostream& out = request.output.empty() ? std::cout : file;
    if (out)
        simulate(request, plant, out);
    out.flush();
    if (out)
        return succeeded;
    std::cerr << "tavro simulate: can't write "
              << (request.output.empty() ? "standard output" : request.output) << "\n";
    return outputIsLost;
}

int runSimulate(Request const& request) {
    FileReader reader;
    PlantFile const file(request.plant, reader, *request.settings);
    if (!file.isSound()) {
        std::fputs(rendered(file.messages(), file.sources()).c_str(), stderr);
        return plantIsWrong;
    }
    Host host;
    auto const plant = buildPlant(file.source(), host);
    try {
        return writeRun(request, *plant);
    } catch (Refused const& refused) {
        std::cerr << "tavro simulate: " << refused.text << "\n";
        return refused.status;
    }
}

}  // namespace

void addSimulate(CLI::App& program, int& status) {
    auto request = std::make_shared<Request>();
    CLI::App* command = program.add_subcommand(
        "simulate", "Make data: a true run of a plant, with faults where asked for");
    command->add_option("FILE", request->plant, "The plant")->required();
    request->settings = addSettings(*command);
    command->add_option("--steps", request->steps, "Number of the last step")
        ->required()
        ->check(countFrom(0));
    command->add_option("--seed", request->seed, "Of all that is drawn: another one, another run");
    command
        ->add_option("--noise", request->noise, "Of each measure: drawn between -NOISE and NOISE")
        ->check(notNegative());
    command
        ->add_option(
            "--uncertainty", request->uncertainty,
            "What the plant gives as intervals is drawn once (constant), anew at each step "
            "(redrawn), or in the middle (middle)")
        ->check(CLI::IsMember({"constant", "redrawn", "middle"}));
    command
        ->add_option("--fault", request->faults,
                     "COMPONENT.VARIABLE=MODE@STEP: fails so at the first step from STEP on at "
                     "which the plant can")
        ->allow_extra_args(false);
    command
        ->add_option("--command", request->commands,
                     "COMPONENT.COMMAND=VALUE@STEP: is commanded at that step")
        ->allow_extra_args(false);
    command->add_option("--input", request->inputs, "NAME=VALUE: an input that stays the same")
        ->allow_extra_args(false);
    command->add_option("--inputs", request->inputFile, "A file with the inputs, a line per step");
    command->add_flag("--csv", request->csv, "A table with a heading instead of a measure file");
    command->add_option("--output,-o", request->output, "Where to; standard output unless told");
    command->footer(
        "The measure file holds the truth in its comments. A discrete plant gives a\n"
        "scenario instead: what is commanded and what is seen at each step.");
    command->callback([request, &status] { status = runSimulate(*request); });
}
