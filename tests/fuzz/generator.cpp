// Sessions as users hold them: a plant, files that fit it, and commands in an order that works. One
// in three is then spoiled (mutation.cpp).
//
// Runs are short and few are followed by many candidates: what a session finds, it finds in its
// first steps, and a thousand short ones find more than one that is long.
#include <cmath>
#include <cstdio>

#include "fuzz/mutation.h"
#include "fuzz/plants.h"
#include "fuzz/random.h"
#include "fuzz/session_case.h"

namespace fuzz {

namespace {

using Words = std::vector<std::string>;

std::string shortNumber(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.6g", value);
    return text;
}

// ---- Measures and inputs ----

// The rate of change of the room's temperature, as the plant of the examples has it: heated to 20
// or not, on a day of 4 degrees, losing a twentieth of the difference in a step; from some step on
// its thermostat may stick, its window be open, or its sensor show nothing.
class Room {
public:
    explicit Room(Random& random)
        : random(random), fault(random.between(0, 7)), faultStep(random.between(0, 12)) {}

    double nextRate() {
        temperature += rate;
        bool const faulty = step++ >= faultStep;
        if (!(faulty && (fault == 1 || fault == 2)))
            heating = temperature < 10.0 || (heating && temperature <= 17.0);
        else
            heating = fault == 1;
        double const exchange = faulty && fault == 3 ? 0.0002 : 0.05;
        rate = exchange * ((heating ? 20.0 : 4.0) - temperature) + 0.1 + 0.1 * random.fraction();
        return faulty && fault == 4 ? 0.0 : rate + (faulty && fault == 5 ? 0.5 : 0.0);
    }

private:
    Random& random;
    int const fault, faultStep;
    int step = 0;
    double temperature = 4.0 + 6.0 * (fault == 6), rate = 0.0;
    bool heating = false;
};

std::string roomMeasures(Random& random, int steps) {
    Room room(random);
    std::string text;
    for (int i = 0; i < steps; ++i)
        text += shortNumber(room.nextRate()) + (i % 3 == 0 ? "   # comment\n" : "\n");
    return text;
}

// Columns that begin somewhere and rise or stay, each on a way of its own; one may jump.
std::string columns(Random& random, int count, int steps) {
    std::vector<double> values, slopes;
    for (int i = 0; i < count; ++i) {
        values.push_back(random.between(0, 4));
        slopes.push_back(random.pick(std::vector<double>{0.0, 0.0, 1.0, 0.5, -0.25}));
    }
    std::size_t const jumping = random.below(static_cast<std::size_t>(count));
    int const jumpStep = random.between(0, 2 * steps);
    std::string text;
    for (int step = 0; step < steps; ++step) {
        if (step == jumpStep)
            values[jumping] += random.between(-9, 9);
        for (std::size_t i = 0; i < values.size(); ++i) {
            text += (i == 0 ? "" : " ") + shortNumber(values[i]);
            values[i] += slopes[i] + 0.01 * random.fraction();
        }
        text += "\n";
    }
    return text;
}

std::string measuresOf(PlantFacts const& plant, Random& random, int steps) {
    if (plant.program == "tavro-exec")
        return roomMeasures(random, steps);
    return columns(random, plant.measures, steps);
}

// ---- Scenarios and implicates ----

std::string commandLine(PlantFacts const& plant, Random& random) {
    std::string line = "Command";
    for (int i = random.between(1, 3); i > 0 && !plant.commands.empty(); --i)
        line += " " + random.pick(plant.commands);
    return line;
}

std::string observationLine(PlantFacts const& plant, Random& random) {
    // The line's sensor is what a discrete plant is observed by; any atom will do elsewhere.
    Words shown;
    for (std::string const& atom : plant.atoms)
        if (atom.starts_with("sensor."))
            shown.push_back(atom);
    return "Observation " + random.pick(shown.empty() ? plant.atoms : shown);
}

std::string scenarioOf(PlantFacts const& plant, Random& random) {
    std::string text;
    int date = random.between(0, 3);
    for (int i = random.between(0, 5); i > 0; --i, date += random.between(1, 4)) {
        bool const command = random.chance(plant.discrete ? 65 : 90);
        text += plant.discrete ? "" : std::to_string(date) + " ";
        text += (command ? commandLine(plant, random) : observationLine(plant, random)) + "\n";
    }
    return text;
}

std::string implicatesOf(PlantFacts const& plant, Random& random) {
    std::string text;
    for (int i = random.between(0, 3); i > 0; --i) {
        text += random.pick(plant.atoms) + ":";
        for (int j = random.between(0, 2); j > 0; --j)
            text += random.pick(plant.atoms) + " " + random.pick(plant.atoms) + (j > 1 ? "," : "");
        text += "\n";
    }
    return text;
}

// ---- The optimiser's options: a value at fixed lines (support/nelder.cpp) ----

std::string optimiserOptions(Random& random) {
    Words lines(44, "");
    auto const set = [&lines](std::size_t line, std::string const& value) {
        lines[line - 1] = value;
    };
    set(7, random.pick(Words{"0", "0", "1", "2"}));
    set(8, random.pick(Words{"0", "1"}));
    set(9, random.pick(Words{"nelder.out", "trace", "disp/trace", "missing/trace"}));
    set(25, random.pick(Words{"1", "1.5", "0"}));
    set(26, random.pick(Words{"0.5", "0.25", "2"}));
    set(27, random.pick(Words{"2", "3"}));
    set(28, random.pick(Words{"0.5", "0.9"}));
    set(32, random.pick(Words{"0", "1"}));
    set(33, random.pick(Words{"0.1", "1", "100"}));
    set(37, random.pick(Words{"0", "1"}));
    set(41, random.pick(Words{"0", "1", "2"}));
    set(42, random.pick(Words{"1e-6", "0.01"}));
    set(43, random.pick(Words{"1e-6", "0.01"}));
    set(44, random.pick(Words{"10", "100", "1"}));
    std::string text;
    for (std::string const& line : lines)
        text += line + "\n";
    return text;
}

// ---- The command line ----

std::string optionOf(PlantFacts const& plant, Random& random) {
    switch (random.below(5)) {
        case 0:
            return "--rules=sharp";
        case 1:
            return "--candidates=" + std::to_string(random.between(1, 9));
        case 2:
            return plant.measureNames.empty() || random.chance(50)
                       ? "--noise=0.05"
                       : "--noise=" + random.pick(plant.measureNames) + "=0.02";
        case 3:
            return "--strict";
        default:
            return "--rules=" +
                   random.pick(Words{"continuity", "regions", "narrow", "histories", "likelihood",
                                     "unknown", "again", "dates", "cover", "limit", "classic",
                                     "narrow,likelihood", "cover,again", "regions,limit"});
    }
}

void addFiles(PlantFacts const& plant, Random& random, int steps, SessionCase& made) {
    if (plant.discrete) {
        made.args.push_back("scn");
        made.files["inp/scn"] = scenarioOf(plant, random);
    } else {
        if (plant.inputs > 0) {
            made.args.push_back("in");
            made.files["inp/in"] = columns(random, plant.inputs, steps);
        }
        if (plant.measures > 0) {
            made.args.push_back("meas");
            made.files["obs/meas"] = measuresOf(plant, random, steps);
        }
        if (plant.displays > 0)
            made.args.push_back("display");
        if (random.chance(30)) {
            made.args.push_back("scn");
            made.files["inp/scn"] = scenarioOf(plant, random);
        }
    }
    if (!made.args.empty() && made.args.back() == "scn" && random.chance(20))
        made.args.push_back("modes");
    if (random.chance(8))
        made.files[std::string(plant.model->model_name) + ".pi"] = implicatesOf(plant, random);
    if (random.chance(8))
        made.files["nelder.dat"] = optimiserOptions(random);
}

void addOptions(PlantFacts const& plant, Random& random, SessionCase& made) {
    Words options;
    for (int i = random.chance(40) ? random.between(1, 3) : 0; i > 0; --i)
        options.push_back(optionOf(plant, random));
    made.args.insert(made.args.begin(), options.begin(), options.end());
}

// ---- The script ----

std::string printCommand(PlantFacts const& plant, Random& random) {
    std::string const word =
        random.pick(Words{"dic", "cond", "comp", "toms", "spa", "inp", "dis", "mea", "inf", "gra",
                          "upd", "glo", "cla", "ini", "comp " + random.pick(plant.components)});
    return random.pick(Words{"print ", "p "}) + word;
}

std::string smallCommand(PlantFacts const& plant, Random& random) {
    switch (random.below(6)) {
        case 0:
            return random.pick(Words{"help", "help in", "help x", "# a comment", " # one", ""});
        case 1:
            return random.pick(
                Words{"system true", "system echo seeded", "system exit 3", "gnuplot", "gp x.gp"});
        default:
            return printCommand(plant, random);
    }
}

std::string initCommand(Random& random) {
    return random.pick(Words{"init", "init", "init", "init noglob", "init 2", "init 5 0.05",
                             "init noglob 3", "init 0 0.001"});
}

std::string simulation(Random& random) {
    bool const multi = random.chance(50);
    std::string line = "simul " + std::to_string(random.between(0, multi ? 8 : 16));
    if (random.chance(25))
        line += " " + std::to_string(random.between(0, 6));
    if (multi)
        return line + " multi\n";
    return line + "\n" + random.pick(Words{"y", "y", "y", "n", ""}) + "\n";
}

std::string detection(Random& random) {
    std::string line = "detect " + std::to_string(random.between(1, 14)) + " " +
                       random.pick(Words{"nofault", "fault1", "fault1", "fault2", "fault3"}) + " " +
                       std::to_string(random.between(0, 3));
    return line + (random.chance(15) ? " nomerge\n" : "\n");
}

std::string runCommands(PlantFacts const& plant, Random& random) {
    if (plant.discrete)
        return "init\ndisc\n";
    std::string text = initCommand(random) + "\n";
    if (random.chance(20))
        text += smallCommand(plant, random) + "\n";
    bool const detects = plant.measures > 0 ? random.chance(70) : random.chance(10);
    return text + (detects ? detection(random) : simulation(random));
}

std::string scriptOf(PlantFacts const& plant, Random& random) {
    std::string text;
    for (int i = random.between(0, 2); i > 0; --i)
        text += smallCommand(plant, random) + "\n";
    for (int i = random.pick(std::vector<int>{0, 1, 1, 1, 1, 2, 2, 3}); i > 0; --i)
        text += runCommands(plant, random);
    if (random.chance(40))
        text += smallCommand(plant, random) + "\n";
    return text + random.pick(Words{"quit\n", "quit\n", "q\n"});
}

// ---- What is asked ----

Fault faultOf(Random& random) {
    Fault fault;
    fault.kind =
        static_cast<Fault::Kind>(random.between(Fault::ALLOCATION, Fault::SIGNAL_AT_ALLOCATION));
    fault.forGood = random.chance(50);
    fault.nth = random.between(1, 12);
    switch (fault.kind) {
        case Fault::ALLOCATION:
        case Fault::SIGNAL_AT_ALLOCATION:
            // As many small numbers as large ones: the start of a session makes some 5,000.
            fault.nth = static_cast<long>(std::pow(10.0, 1.0 + 4.0 * random.fraction()));
            break;
        case Fault::WRITE:
            fault.value = random.pick(std::vector<int>{28 /* ENOSPC */, 5 /* EIO */, 0});
            break;
        case Fault::CLOSE:
            fault.value = random.pick(std::vector<int>{28, 5});
            break;
        default:
            fault.value = 24 /* EMFILE */;
    }
    if (fault.kind == Fault::SIGNAL_AT_STEP || fault.kind == Fault::SIGNAL_AT_ALLOCATION) {
        fault.value = random.pick(std::vector<int>{2 /* INT */, 15 /* TERM */, 1 /* HUP */});
        fault.forGood = false;
    }
    return fault;
}

void addCheck(Random& random, SessionCase& made) {
    made.check = random.pick(std::vector<Check>{
        Check::PLAIN, Check::PLAIN, Check::PLAIN, Check::PLAIN, Check::COMMENT, Check::LINE_ENDS,
        Check::RENAMING, Check::SPLIT, Check::STRICT, Check::FAULT});
    if (made.check == Check::FAULT)
        made.fault = faultOf(random);
}

}  // namespace

SessionCase caseOf(std::uint64_t seed) {
    Random random(seed);
    // The first ones are those with the most code behind them.
    std::vector<std::size_t> const likely = {0, 0, 0, 0, 0, 1, 1, 2, 3, 4, 5, 6, 7};
    PlantFacts const& plant = plants()[random.pick(likely)];
    SessionCase made;
    made.model = plant.model->model_name;
    addFiles(plant, random, random.between(0, 16), made);
    addOptions(plant, random, made);
    made.script = scriptOf(plant, random);
    addCheck(random, made);
    if (random.chance(35))
        spoil(plant, random, made);
    return made;
}

}  // namespace fuzz
