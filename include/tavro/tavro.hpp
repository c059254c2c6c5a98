// Tavro as a library: follow a physical system by its measures, and learn which fault explains
// them.
//
//     #include <tavro/tavro.hpp>
//     #include <cstdio>
//
//     int main() {
//         tavro::Plant const plant = tavro::Plant::builtin("therm");
//         tavro::Run run(plant, {.isolation = 1, .threshold = 3});
//         run.start({.measures = {0.93835}});
//         for (double const rate : {0.951942, 0.936179, 0.808943}) {
//             tavro::Step const step = run.step({.measures = {rate}});
//             for (tavro::Alarm const& alarm : step.alarms)
//                 std::printf("%g: %s is off\n", step.time, alarm.measure.c_str());
//             for (tavro::Explanation const& e : step.explanations)
//                 std::printf("%s\n", e.summary.c_str());
//         }
//     }
//
// A Plant is what is followed: built once, checked, and constant from then on. A Run is one
// following of it, and holds all that changes: several runs of one plant, and runs of several
// plants, may go on side by side, each in a thread of its own. One run is used by one thread at a
// time. A Step is what a run answers, a value with no ties to the run.
//
// The states of a run, and what may be called in each:
//
//     made      start, plant, time       no candidate yet
//     started   step, plant, time        after start
//     stopped   plant, time              after an error that ends the run: start and step answer
//                                        with that same error
//
// Everything may be destroyed in every state and in any order: a run keeps its plant.
//
// What fails is thrown as an Error, which tells its kind; nothing else is thrown, but for
// std::bad_alloc where no run is the cause. An error of kind `options`, `data` or `state` is a
// wrong call: it changed nothing, and the run goes on. Every other kind stops the run.
//
// The library prints nothing, opens no file but those that Plant::load names and, if
// Options::watchMemory asks for it, what the system tells of its memory; it installs no handler
// and never ends the process. Who wants to see the
// reasoning gives Options::trace or Options::messages a place to write to.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#define TAVRO_API __attribute__((visibility("default")))

namespace tavro {

// The version of the library that is linked, as "0.1.0".
TAVRO_API char const* version();

// ---- Errors ----

enum class ErrorKind {
    plant,            // there is no such plant, its text is wrong, or its check has refused it
    options,          // an option is out of its range, or does not fit the plant
    data,             // a wrong count of values, a value that is no finite number, an unknown name
    state,            // a call that is not legal in the state of the run
    noCover,          // a value fits no condition of the plant: the plant does not tell what holds
    eventImpossible,  // the measured world and a candidate's modes contradict each other
    noDiagnosis,      // nothing in the plant explains the measures
    outsideWindow,    // the fault lies further back than the histories reach
    memory,           // memory ran short within a step
    // A defect of the library, or of a plant compiled into it: no call is known to lead here, and
    // this is what becomes of an exception that nobody foresaw.
    internal,
    givenUp  // within a step, since Options::giveUp said so
};

class TAVRO_API Error : public std::runtime_error {
public:
    Error(ErrorKind kind, std::string const& text) : std::runtime_error(text), why(kind) {}
    ErrorKind kind() const noexcept { return why; }

private:
    ErrorKind why;
};

// ---- What is followed ----

// A causal link between two variables.
struct Influence {
    std::string name;  // "R1.i1"; empty for one without a name
    std::string cause, effect;
    std::string kind;       // "static", "integral", "first order", "second order", "coupling"
    std::string condition;  // under which it acts, as in Suspect
};

struct PlantData;

// A handle on a constant plant: a copy costs a counter, and every copy is the same plant.
class TAVRO_API Plant {
public:
    // A plant that is compiled into the library; builtins() lists the names. Builds it anew, which
    // takes about a millisecond. Error: plant, internal.
    static Plant builtin(std::string_view name);
    static std::vector<std::string> builtins();
    // A plant as text, read from the file with all that it includes. *settings* are constants that
    // are worth something else than is written, as "rooms=64". Error: plant, with every message of
    // the check, each with its place, the line and a caret; internal.
    static Plant load(std::string const& path, std::vector<std::string> const& settings = {});

    Plant(Plant const&);
    Plant& operator=(Plant const&);
    ~Plant();

    std::string const& name() const;
    // A discrete plant has modes, commands and observations, but no continuous variables: its runs
    // take no inputs and no measures.
    bool discrete() const;
    // Seconds between two steps; 1 for a discrete plant.
    double period() const;

    // Names, each list in the order in which a run takes or gives values. The lists live as long as
    // some handle on the plant does.
    std::vector<std::string> const& inputs() const;      // what Line::inputs gives
    std::vector<std::string> const& measures() const;    // what Line::measures gives
    std::vector<std::string> const& variables() const;   // keys of Candidate::bounds
    std::vector<std::string> const& components() const;  // in Explanation::component
    std::vector<std::string> const& modes() const;       // keys of Candidate::modes
    std::vector<std::string> const& commands() const;    // what may stand in Line::commands
    // What may stand in Line::observations; empty unless the plant is discrete.
    std::vector<std::string> const& observations() const;
    // The modes that a variable of modes() can be in; empty for any other name.
    std::vector<std::string> values(std::string const& mode) const;
    // The causal graph, in the plant's order. What is in neither variables() nor inputs() is a
    // parameter, which is a cause alone.
    std::vector<Influence> influences() const;

private:
    friend class Run;
    explicit Plant(std::shared_ptr<PlantData const> data);
    std::shared_ptr<PlantData const> data;
};

// ---- What goes in ----

enum class Mode {
    detect,   // compares the measures with the bounds, and keeps the candidates that agree
    simulate  // predicts without looking at the measures
};

struct Options {
    Mode mode = Mode::detect;
    // What is done once no candidate agrees: 0 nothing but alarms; 1 the fault is isolated from the
    // misbehaving measures alone; 2 with soft conflicts and an order by preference; 3 with
    // exoneration by the measures that behave. From 1 on the suspects are then explained.
    int isolation = 1;
    // An alarm takes that many measures in a row on one side of the bounds; at least 1.
    int threshold = 3;
    bool globalConstraints = true;
    // Relative tolerance when a measure is compared with a number instead of an interval.
    double precision = 0.01;
    // For how many steps a misbehaviour is remembered, 0 to 1,000,000.
    int accumulation = 0;
    // Candidates that have become equal are merged.
    bool merge = true;
    // How the run reasons: "classic", "sharp", or names of rules with commas between. docs/rules.md
    // tells what each rule does.
    std::string rules = "classic";
    // At most so many candidates are followed, the likeliest; 0: as many as the rules say.
    int candidates = 0;
    // How far a measure may be from the truth, by the name of its variable; "" stands for all
    // measures that are not named. Read by the rule "narrow".
    std::map<std::string, double> noise = {};
    // Of a simulation: follow every way that the plant can go, not one alone.
    bool multi = true;
    // Of a simulation: the prediction is set to the measures once, at this time; 0 for never.
    double reset = 0.0;
    // Stop in order (Error: memory) before the machine runs out of memory. Then, and only then, the
    // library reads what the system tells of its memory, at most once a millisecond.
    bool watchMemory = false;

    // Asked often within a start or a step; true gives it up (Error: givenUp), which stops the run.
    // For a program that is to end and cannot wait for a search. It must be cheap, must not throw
    // and must not call the run.
    std::function<bool()> giveUp = nullptr;

    // Where the reasoning is told, line by line, and where messages are; none is told without a
    // place. Both are called from within start and step, and from nowhere else. They must not throw
    // and must not call the run.
    std::function<void(std::string_view line)> trace = nullptr;
    std::function<void(std::string_view line)> messages = nullptr;
};

// What is known at one step. Values stand in the order of the plant's lists, all of them, each a
// finite number; the start takes inputs and measures too. A measure that is missing is given as
// NaN: it is compared with nothing and narrows nothing. Where no influence leads to its variable,
// the first one may not be missing. Only a step of a simulation may leave the measures out.
// Commands and observations are "variable=value", as the plant lists them. A start takes neither; a
// step of a discrete plant takes one of the two.
struct Line {
    std::vector<double> inputs{};
    std::vector<double> measures{};
    std::vector<std::string> commands{};
    std::vector<std::string> observations{};
};

// ---- What comes out ----

// Infinite where nothing bounds the value.
struct Bounds {
    double lower;
    double upper;
};

enum class Side { low, high };

// A measure that has left the bounds for long enough, where no candidate agrees.
struct Alarm {
    std::string measure;
    Side side;  // below the bounds, or above
};

// An influence that may not be acting as it should.
struct Suspect {
    std::string influence;  // "R1.i1"; empty for one without a name
    int delay = 0;          // steps between its action and the measure
    // Under which it acts, as "(((a.mode=on)) | ((a.mode=idle)))"; "()" always. By the rule
    // "suspects" also of one that rests and may be acting: under which it rests, as "(! (..))".
    std::string condition;

    bool operator==(Suspect const&) const = default;
};

// Suspects that together explain the alarms.
using SuspectSet = std::vector<Suspect>;

// A transition that a candidate took to explain what was seen.
struct Explanation {
    std::size_t candidate = 0;  // index in Step::candidates; 0 of a candidate's own moves
    std::string component;      // "thermostat"
    std::string from, to;       // modes: "on", "stuck_on"
    int step = 0;               // of the candidate's discrete history
    double time = 0.0;          // of that step; -1: before the steps that are kept
    // The range of times at which it may have been taken: by the rule "dates", those that agree
    // with what was measured, or in a discrete plant all at which some history of the same end has
    // it; otherwise both are the time.
    double earliest = 0.0, latest = 0.0;
    double rank = 0.0;     // of the candidate
    bool failure = false;  // false: an ordinary transition that was assumed beside a failure
    bool unknown = false;  // into a mode of which the plant tells nothing
    std::string summary;   // "thermostat on -> stuck_on at 24"
};

// One history of the plant that is being followed.
struct Candidate {
    // Of one prediction as long as it is followed: one that splits or is replaced by explanations
    // ends, and others begin. 0 in a discrete plant.
    int id = 0;
    std::map<std::string, std::string> modes;  // "thermostat.mode" is "on"
    std::map<std::string, Bounds> bounds;      // "room.x" lies in [4, 4]
    // Of each measure what was predicted before the measures of this step narrowed anything. What
    // could have been measured without being noticed is mostly this.
    std::map<std::string, Bounds> foretold;
    double rank = 0.0;  // how many failures it takes
    // Its share among the histories that the last discrete step or search weighed; 0 before any.
    double probability = 0.0;
    // What diagnoses have put into its history, in the order of the steps.
    std::vector<Explanation> moves;
    bool agrees = true;  // with the measures; always true in a simulation and in a discrete plant
};

struct Step {
    double time = 0.0;
    std::vector<Candidate> candidates;  // the best first: by rank, or by probability
    // Empty while some candidate agrees. At a diagnosis: what led to it.
    std::vector<Alarm> alarms;
    // No candidate agreed, and new ones were searched for in this step. A run with measures accepts
    // one diagnosis that knows the mode it ends in, and later disagreements are alarms alone; a
    // discrete plant is diagnosed any number of times.
    bool diagnosed = false;
    // Of a diagnosis by measures: each set is one way to explain the alarms, and `diagnosis` is the
    // same as text, a line for each candidate that was given up.
    std::vector<SuspectSet> suspects;
    std::string diagnosis;
    // Of a diagnosis: what the candidates took to explain it, candidate by candidate. Empty for one
    // that explains it without a transition.
    std::vector<Explanation> explanations;
    // So many of the least likely candidates were dropped, by the limit of the options.
    std::size_t dropped = 0;
    // Of a diagnosis by the rule "dates": not every date was tried, failures may be older.
    bool datesCut = false;
    // A measure whose bounds have just grown past use: they contain all that it ever was. Told once
    // in a run; "" otherwise.
    std::string pastUse;
};

// A move of a component in a candidate's history.
struct Move {
    std::string component;
    std::string from, to;  // modes
    bool failure = false;
    bool unknown = false;  // into a mode of which the plant tells nothing
};

// A discrete step of a candidate's history, which has steps only where something changes.
struct HistoryStep {
    int step = 0;
    double time = 0.0;                         // -1: before the steps that are kept
    std::map<std::string, std::string> modes;  // of the components that the step is about
    std::vector<Move> moves;                   // that led to it, idle ones left out
};

// ---- The following ----

struct RunData;

class TAVRO_API Run {
public:
    // Costs a copy of the plant's runtime. Error: options.
    explicit Run(Plant const& plant, Options options = {});
    // A run that was moved from may only be destroyed or assigned to.
    Run(Run&&) noexcept;
    Run& operator=(Run&&) noexcept;
    ~Run();

    // Makes the first candidate at time 0, to be called once. Error: state, data, and what stops.
    Step start(Line const& line = {});
    // One period later: every candidate goes on, and stays if it agrees. Costs some ten
    // microseconds a candidate, and a diagnosis a search. Error: state, data, and what stops.
    Step step(Line const& line = {});

    // The history of a candidate of the last step, as far back as the window reaches, and the same
    // as a graph in the language of Graphviz. Error: state, before the start, after a stop or
    // for a place that the last step does not have.
    std::vector<HistoryStep> history(std::size_t candidate) const;
    std::string graph(std::size_t candidate, std::string const& name) const;

    Plant const& plant() const;
    double time() const;  // of the last step that ended well

private:
    Plant followed;
    std::unique_ptr<RunData> data;
};

}  // namespace tavro
