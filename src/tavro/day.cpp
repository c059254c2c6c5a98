// From tables and scenarios to the lines of a run.
#include "tavro/day.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <sstream>

#include "language/file_reader.h"
#include "language/messages.h"
#include "support/numbers.h"
#include "tavro/value_table.h"

namespace {

constexpr double missing = std::numeric_limits<double>::quiet_NaN();

std::vector<std::string> both(std::vector<std::string> first,
                              std::vector<std::string> const& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

void addNotes(Day& day, ValueTable const& table) {
    day.notes.insert(day.notes.end(), table.notes.begin(), table.notes.end());
}

double valueAt(ValueTable const& table, std::string const& name, std::size_t row) {
    auto const column = table.columns.find(name);
    return column == table.columns.end() || row >= table.rows ? missing : column->second[row];
}

void readMeasures(tavro::Plant const& plant, ValueTable const& table, std::string const& file,
                  Day& day) {
    if (std::none_of(plant.measures().begin(), plant.measures().end(),
                     [&](auto const& name) { return table.columns.count(name) != 0; }))
        throw DataRefused(file +
                          ": there is no column for any measure: " + oneOf(plant.measures()));
    for (std::string const& name : plant.measures())
        if (table.columns.count(name) == 0)
            day.notes.push_back(file + ": there is no column " + name +
                                ", which is taken as missing");
    for (std::size_t row = 0; row < table.rows; ++row) {
        tavro::Line line;
        for (std::string const& name : plant.measures())
            line.measures.push_back(valueAt(table, name, row));
        day.lines.push_back(std::move(line));
    }
}

// An input that is missing keeps its last value: a plant without one cannot be predicted.
void readInputs(tavro::Plant const& plant, ValueTable const& table, std::string const& file,
                Day& day) {
    bool toldEnd = false, toldMissing = false;
    for (std::string const& name : plant.inputs())
        if (table.columns.count(name) == 0)
            throw DataRefused(file + ": there is no column for the input " + name +
                              ", and no file of inputs is given");
    std::vector<double> last(plant.inputs().size(), missing);
    for (std::size_t row = 0; row < day.lines.size(); ++row) {
        if (row >= table.rows && !toldEnd) {
            day.notes.push_back(file + ": inputs end at step " + std::to_string(table.rows - 1) +
                                "; the last ones stay");
            toldEnd = true;
        }
        for (std::size_t i = 0; i < plant.inputs().size(); ++i) {
            double const value = valueAt(table, plant.inputs()[i], row);
            if (!std::isnan(value))
                last[i] = value;
            else if (row < table.rows && !toldMissing) {
                day.notes.push_back(file + ": the input " + plant.inputs()[i] +
                                    " is missing at step " + std::to_string(row) +
                                    "; the last value stays, here and below");
                toldMissing = true;
            }
            if (std::isnan(last[i]))
                throw DataRefused(file + ": the first value of the input " + plant.inputs()[i] +
                                  " is missing");
        }
        day.lines[row].inputs = last;
    }
}

// ---- Scenarios ----

struct Event {
    std::size_t line;
    std::string kind;
    std::vector<std::string> atoms;
};

// "Command a.b=c ..." or "Observation ..."
Event eventOf(std::istringstream& words, std::size_t number, std::string const& file) {
    Event event{number, "", {}};
    words >> event.kind;
    if (event.kind != "Command" && event.kind != "Observation")
        throw DataRefused(file + ":" + std::to_string(number) +
                          ": an event is a Command or an Observation, not \"" + event.kind + "\"");
    for (std::string word; words >> word;)
        event.atoms.push_back(word);
    return event;
}

void checkAtoms(Event const& event, std::vector<std::string> const& known,
                std::string const& file) {
    for (std::string const& atom : event.atoms)
        if (std::find(known.begin(), known.end(), atom) == known.end())
            throw DataRefused(
                file + ":" + std::to_string(event.line) + ": the plant has no such " +
                (event.kind == "Command" ? "command: " : "observation: ") + atom + "; " +
                suggestion(atom, known,
                           known.empty() ? "it has none" : "there are " + oneOf(known)));
}

void enterCommands(tavro::Plant const& plant, Event const& event, double date,
                   std::string const& file, Day& day) {
    if (event.kind != "Command")
        throw DataRefused(file + ":" + std::to_string(event.line) +
                          ": a plant with measures takes commands alone");
    double const step = std::round(date / plant.period());
    bool const meets = std::fabs(date / plant.period() - step) < 1e-6 && step >= 1.0 &&
                       step < static_cast<double>(day.lines.size());
    if (!meets) {
        day.notes.push_back(file + ":" + std::to_string(event.line) + ": the date " +
                            shortText(date) + " meets no step, the event is left out");
        return;
    }
    auto& commands = day.lines[static_cast<std::size_t>(step)].commands;
    commands.insert(commands.end(), event.atoms.begin(), event.atoms.end());
}

void readEvent(tavro::Plant const& plant, std::string const& text, std::size_t number,
               std::string const& file, Day& day) {
    std::istringstream words(text);
    double date = 0.0;
    if (!plant.discrete() && !(words >> date))
        throw DataRefused(file + ":" + std::to_string(number) +
                          ": an event begins with its date in seconds");
    Event const event = eventOf(words, number, file);
    bool const commands = event.kind == "Command";
    checkAtoms(event, commands ? plant.commands() : plant.observations(), file);
    if (!plant.discrete())
        return enterCommands(plant, event, date, file, day);
    tavro::Line line;
    (commands ? line.commands : line.observations) = event.atoms;
    day.lines.push_back(std::move(line));
}

}  // namespace

Day readDay(tavro::Plant const& plant, std::string const& measureFile,
            std::string const& inputFile) {
    Day day;
    if (plant.discrete()) {
        day.lines.emplace_back();  // the start
        return day;
    }
    bool const inputsWithin = inputFile.empty() && !plant.inputs().empty();
    ValueTable const measures = readTable(
        measureFile, plant.measures(),
        inputsWithin ? both(plant.measures(), plant.inputs()) : plant.measures(), plant.period());
    addNotes(day, measures);
    readMeasures(plant, measures, measureFile, day);
    if (inputsWithin)
        readInputs(plant, measures, measureFile, day);
    if (inputFile.empty())
        return day;
    ValueTable const inputs = readTable(inputFile, plant.inputs(), plant.inputs(), plant.period());
    addNotes(day, inputs);
    readInputs(plant, inputs, inputFile, day);
    return day;
}

void readScenario(tavro::Plant const& plant, std::string const& file, Day& day) {
    FileReader reader;
    std::optional<std::string> const text = reader.read(file);
    if (!text)
        throw DataRefused("can't read file " + file);
    std::istringstream lines(*text);
    std::size_t number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        line.erase(std::min(line.find('#'), line.size()));
        if (line.find_first_not_of(" \t\r") != std::string::npos)
            readEvent(plant, line, number, file, day);
    }
}
