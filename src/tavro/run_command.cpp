// `tavro run PLANT`: from a log to an answer.
//
// The run is the library's, step by step; what comes out is recorded, told in words and written
// where it was asked for. However a run ends, all that it has until then is written.
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>

#include "console/interrupts.h"
#include "language/messages.h"
#include "report/document.h"
#include "report/outcome.h"
#include "tavro/commands.h"
#include "tavro/day.h"
#include "tavro/progress.h"
#include "tavro/run_outputs.h"
#include "tavro/validators.h"

namespace {

// Statuses besides those of a verdict.
enum RunStatus { usage = 2, plantRefused = 3, dataRefused = 4, resultsLost = 5 };

// Histories are told of the best candidates; more would be read by nobody.
constexpr std::size_t mostHistories = 20;

struct Request {
    std::string plant, measures, inputs, scenario;
    std::vector<std::string> noise;
    std::shared_ptr<std::vector<std::string>> settings;
    int steps = -1;  // as many as there are data
    tavro::Options options{.rules = "sharp", .watchMemory = true};
    RunOutputs outputs;
    bool trace = false;
};

// "0.02" for all measures, "room.xd=0.02" for one.
void readNoise(Request& request) {
    for (std::string const& word : request.noise) {
        std::size_t const equals = word.rfind('=');
        std::string const name = equals == std::string::npos ? "" : word.substr(0, equals);
        std::string const number = equals == std::string::npos ? word : word.substr(equals + 1);
        char* end = nullptr;
        double const value = std::strtod(number.c_str(), &end);
        if (number.empty() || *end != '\0')
            throw CLI::ValidationError("--noise", word + ": write a number, or MEASURE=NUMBER");
        request.options.noise[name] = value;
    }
}

EarlyEnd earlyEndOf(tavro::Error const& error) {
    switch (error.kind()) {
        case tavro::ErrorKind::memory:
            return {EarlyEnd::memory, error.what()};
        case tavro::ErrorKind::givenUp:
            return {EarlyEnd::interrupted, stopReason() != nullptr ? stopReason() : error.what()};
        case tavro::ErrorKind::noCover:
        case tavro::ErrorKind::internal:
            return {EarlyEnd::plant, error.what()};
        default:
            return {EarlyEnd::noDiagnosis, error.what()};
    }
}

bool isWrongCall(tavro::Error const& error) {
    return error.kind() == tavro::ErrorKind::data || error.kind() == tavro::ErrorKind::state ||
           error.kind() == tavro::ErrorKind::options;
}

class Following {
public:
    Following(Request const& request, tavro::Plant const& plant, Day const& day)
        : request(request),
          plant(plant),
          day(day),
          recorder(plant, request.outputs.needsBounds()),
          run(plant, request.options),
          writer(request.outputs,
                 {request.plant, request.measures, request.inputs, request.scenario}) {}

    int follow() {
        EarlyEnd const end = takeSteps();
        if (end.kind == EarlyEnd::none || end.kind == EarlyEnd::interrupted)
            takeHistories();
        Outcome const outcome = outcomeOf(recorder.record(), plant, end);
        RunFacts const facts{request.plant,    request.measures, request.inputs,
                             request.scenario, request.options,  day.notes};
        if (request.outputs.needsBounds())
            writer.document(documentOf(recorder.record(), outcome, plant, facts));
        bool const written = writer.close();
        bool const whole = tell(outcome) && written;
        int const status =
            statusOfInterrupt() != 0 ? statusOfInterrupt() : static_cast<int>(outcome.verdict);
        return whole ? status : resultsLost;
    }

private:
    std::size_t lastStep() const {
        std::size_t const there = day.lines.size() - 1;
        return request.steps < 0 ? there : std::min(there, static_cast<std::size_t>(request.steps));
    }

    EarlyEnd takeSteps() {
        Progress progress(lastStep());
        try {
            for (std::size_t k = 0; k <= lastStep(); ++k) {
                if (stopReason() != nullptr)
                    return {EarlyEnd::interrupted, stopReason()};
                take(k, k == 0 ? run.start(day.lines[k]) : run.step(day.lines[k]));
                progress.reached(k);
            }
        } catch (tavro::Error const& error) {
            if (isWrongCall(error))
                throw;
            runIsOver = true;
            return earlyEndOf(error);
        } catch (std::bad_alloc const&) {
            return {EarlyEnd::memory, "memory ran short"};
        }
        return {};
    }
    void take(std::size_t k, tavro::Step const& step) {
        recorder.add(day.lines[k], step);
        writer.step(k, day.lines[k], step, plant, recorder.record().last);
    }
    // A run that gave its step up has no candidates any more.
    void takeHistories() {
        if (recorder.record().time.empty() || runIsOver)
            return;
        recorder.finish(run, mostHistories);
        writer.graphs(run, recorder.record().last.size());
    }

    // Where results go to standard output, the answer goes beside it. False when it is lost.
    bool tell(Outcome const& outcome) const {
        bool const beside = request.outputs.usesStandardOutput();
        std::FILE* const to = beside ? stderr : stdout;
        char const* const none = std::getenv("NO_COLOR");
        bool const colours = (none == nullptr || *none == '\0') && isatty(fileno(to)) == 1;
        bool first = true;
        for (std::string const& sentence : outcome.answer) {
            char const* const colour =
                outcome.verdict == Verdict::healthy ? "\033[32m" : "\033[31m";
            std::fprintf(to, "%s%s%s\n", colours && first ? colour : "", sentence.c_str(),
                         colours && first ? "\033[0m" : "");
            first = false;
        }
        return std::fflush(to) == 0 && std::ferror(to) == 0;
    }

    Request const& request;
    tavro::Plant const& plant;
    Day const& day;
    Recorder recorder;
    tavro::Run run;
    RunWriter writer;
    bool runIsOver = false;  // an error has stopped it
};

void checkFiles(Request const& request, tavro::Plant const& plant) {
    if (plant.discrete() && request.scenario.empty())
        throw UsageRefused("this plant has no measures: give its events with --scenario FILE");
    if (!plant.discrete() && request.measures.empty())
        throw UsageRefused("give the measures of " + oneOf(plant.measures()) +
                           " with --measures FILE");
    if (plant.discrete() && !request.measures.empty())
        throw UsageRefused("this plant has no measures: leave out --measures");
    if (plant.inputs().empty() && !request.inputs.empty())
        throw UsageRefused("this plant has no inputs: leave out --inputs");
}

int runIt(Request& request) {
    try {
        tavro::Plant const plant = tavro::Plant::load(request.plant, *request.settings);
        checkFiles(request, plant);
        Day day = readDay(plant, request.measures, request.inputs);
        if (!request.scenario.empty())
            readScenario(plant, request.scenario, day);
        std::size_t const last = day.lines.size() - 1;
        if (request.steps > 0 && static_cast<std::size_t>(request.steps) > last)
            day.notes.push_back("the data end at step " + std::to_string(last) +
                                ", and the run with them");
        for (std::string const& note : day.notes)
            std::fprintf(stderr, "tavro run: %s\n", note.c_str());
        if (request.trace)
            request.options.trace =
                request.options.messages = [](std::string_view line) { std::cerr << line << '\n'; };
        heedInterrupts();
        request.options.giveUp = stopIsOverdue;
        return Following(request, plant, day).follow();
    } catch (DataRefused const& refused) {
        std::fprintf(stderr, "tavro run: %s\n", refused.what());
        return dataRefused;
    } catch (UsageRefused const& refused) {
        std::fprintf(stderr, "tavro run: %s\n", refused.what());
        return usage;
    } catch (ResultsRefused const& refused) {
        std::fprintf(stderr, "tavro run: %s\n", refused.what());
        return resultsLost;
    } catch (tavro::Error const& error) {
        bool const isPlant = error.kind() == tavro::ErrorKind::plant;
        std::fprintf(stderr, isPlant ? "%s" : "tavro run: %s\n", error.what());
        return isPlant                                     ? plantRefused
               : error.kind() == tavro::ErrorKind::options ? static_cast<int>(usage)
                                                           : dataRefused;
    } catch (std::bad_alloc const&) {
        std::fputs("tavro run: memory runs short\n", stderr);
        return static_cast<int>(Verdict::limited);
    }
}

void addFiles(CLI::App& command, Request& request) {
    command.add_option("PLANT", request.plant, "The plant")->required();
    command.add_option("--measures,-m", request.measures,
                       "What was measured: numbers, a line per step, or CSV with a heading");
    command.add_option("--inputs,-i", request.inputs,
                       "The inputs, likewise, where the measure file has no columns for them");
    command.add_option("--scenario,-s", request.scenario,
                       "The commands given; of a plant without measures all that happened");
}

void addOptions(CLI::App& command, Request& request) {
    command.add_option("--steps", request.steps, "The last step; that of the data unless told")
        ->check(countFrom(0));
    command
        .add_option("--isolate", request.options.isolation,
                    "1: from the measures that misbehave, 2: with soft conflicts, 3: with those "
                    "that behave")
        ->check(CLI::Range(1, 3))
        ->capture_default_str();
    command
        .add_option("--threshold", request.options.threshold,
                    "So many measures in a row outside of the bounds are a fault")
        ->check(countFrom(1))
        ->capture_default_str();
    command
        .add_option("--rules", request.options.rules,
                    "sharp, classic, or names of rules with commas between")
        ->capture_default_str();
    command.add_option("--candidates", request.options.candidates, "Follow at most so many")
        ->check(countFrom(1));
    command
        .add_option("--noise", request.noise,
                    "How far measures may be from the truth: NUMBER, or MEASURE=NUMBER")
        ->delimiter(',')
        ->allow_extra_args(false);
}

void addOutputs(CLI::App& command, Request& request) {
    RunOutputs& outputs = request.outputs;
    command.add_option("--report", outputs.page, "A page to look at: FILE.html");
    command.add_option("--json", outputs.document, "All of it as one document");
    command.add_option("--jsonl", outputs.stream, "A document per line and step, as they come");
    command.add_option("--csv", outputs.table, "A row for each step and candidate");
    command.add_option("--graphs", outputs.graphs,
                       "A directory for the histories of the candidates, as Graphviz texts");
    command.add_flag("--trace", request.trace, "Tell the reasoning on the error stream");
}

}  // namespace

void addRun(CLI::App& program, int& status) {
    auto request = std::make_shared<Request>();
    CLI::App* command =
        program.add_subcommand("run", "Follow a plant by its log: is it healthy, and what broke?");
    addFiles(*command, *request);
    request->settings = addSettings(*command);
    addOptions(*command, *request);
    addOutputs(*command, *request);
    command->footer(
        "- as a file is standard output, where nothing else is written then.\n"
        "Status: 0 healthy, 10 a fault that is explained, 11 one that is not; 2 the command\n"
        "line, 3 the plant, 4 the data, 5 results that could not be written, 6 a limit,\n"
        "130 an interrupt.");
    command->callback([request, &status] {
        readNoise(*request);
        status = runIt(*request);
    });
}
