// Scenario files and the table of events.
//
// Two forms are read, an event a line: the dated one whole, before a hybrid run, and the undated
// one line by line, during a discrete run. Tokens are separated by blanks and line ends alone.
#include <algorithm>
#include <array>
#include <cassert>
#include <cstdlib>
#include <cstring>
#include <optional>

#include "model/StateVar.h"
#include "model/labels.h"
#include "reasoning/Scheduler.h"
#include "support/numbers.h"

namespace {

// A longer line counts as several lines.
constexpr std::size_t lineSize = 1024;
constexpr char const* separators = " \n";
constexpr char const* commandKind = "Command";

using Line = std::array<char, lineSize>;

// Reads a line with its end, or the first part of one that is too long; false at the end.
bool nextLine(std::istream& file, Line& line) {
    std::size_t length = 0;
    while (length < lineSize - 1) {
        int const c = file.get();
        if (c == std::istream::traits_type::eof())
            break;
        line[length++] = static_cast<char>(c);
        if (c == '\n')
            break;
    }
    assert(length < lineSize);
    line[length] = '\0';
    return length > 0;
}

// The tokens of a line, one after the other; null when there are no more.
class Tokens {
public:
    explicit Tokens(Line& line) : start(line.data()) {}
    char const* next() {
        char* const token = strtok_r(start, separators, &rest);
        start = nullptr;
        return token;
    }

private:
    char* start;  // null once the walk has begun
    char* rest = nullptr;
};

// The atom, or null. Enters nothing for an unknown word, which does not live on.
Atom* knownAtom(DataManager const& run, char const* id) {
    auto const found = run.active_atoms.find(id);
    return found == run.active_atoms.end() ? nullptr : found->second;
}

void reportInvalid(std::ostream& err, char const* token) {
    err << "Scheduler::readFromScenario --> received command is not valid : " << token << "\n";
}

void reportReceived(std::ostream& err, bool isCommand, Atom const* atom) {
    err << "Scheduler receives " << (isCommand ? "a command: " : "an observation: ")
        << atom->getId() << "\n";
}

// Reads the atoms of the rest of a line into *event*; false on an unknown one.
bool readAtoms(DataManager const& run, Tokens& tokens, scenarEvent& event, bool echo) {
    while (char const* token = tokens.next()) {
        if (echo)
            run.err << "regular token : " << token << "\n";
        Atom* atom = knownAtom(run, token);
        if (atom == nullptr) {
            reportInvalid(run.err, token);
            return false;
        }
        reportReceived(run.err, event.isCommand, atom);
        event.atoms.push_back(atom);
    }
    return true;
}

void reportNoKind(std::ostream& err, std::string const& path, int line) {
    err << "scenario file " << path << ", line " << line << ": no kind of event, line skipped\n";
}

}  // namespace

// Required: after the first command line every later line counts as one, whatever its kind.
void Scheduler::loadScenario(std::string const& path) {
    if (!openScenario(path))
        return;
    bool isCommand = false;
    Line line;
    while (nextLine(*scenarioFile, line)) {
        ++scenarioLine;
        Tokens tokens(line);
        char const* date = tokens.next();
        if (date == nullptr) {
            reportNoKind(err, path, scenarioLine);
            continue;
        }
        double const when = std::atof(date);
        err << "event date: " << when << "\n";
        char const* kind = tokens.next();
        if (kind == nullptr) {
            reportNoKind(err, path, scenarioLine);
            continue;
        }
        if (std::strcmp(kind, commandKind) == 0)
            isCommand = true;
        auto event = std::make_unique<scenarEvent>();
        event->isCommand = isCommand;
        if (!readAtoms(*this, tokens, *event, true))
            return;
        scenario[when] = std::move(event);
    }
    scenarioFile.reset();
}

bool Scheduler::openScenario(std::string const& path) {
    scenarioPath = path;
    scenarioLine = 0;
    scenarioFile = host.open(path);
    if (scenarioFile == nullptr)
        err << "can't open scenario file: " << path << "\n";
    return scenarioFile != nullptr;
}

std::unique_ptr<scenarEvent> Scheduler::readFromScenario() {
    Line line;
    while (scenarioFile != nullptr && nextLine(*scenarioFile, line)) {
        ++scenarioLine;
        Tokens tokens(line);
        char const* kind = tokens.next();
        if (kind == nullptr) {
            reportNoKind(err, scenarioPath, scenarioLine);
            continue;
        }
        auto event = std::make_unique<scenarEvent>();
        event->isCommand = std::strcmp(kind, commandKind) == 0;
        if (!readAtoms(*this, tokens, *event, false))
            return nullptr;
        return event;
    }
    err << "end of the scenario !\n";
    return nullptr;
}

void Scheduler::addCommandEvent(Atom* atom, int when) {
    assert(atom != nullptr);
    double key = when;
    for (;; key += 1.0) {
        auto& event = scenario[key];
        if (event == nullptr)
            event = std::make_unique<scenarEvent>();
        else if (!intersectClauses(atom, event->atoms))
            continue;
        event->isCommand = true;
        event->atoms.push_back(atom);
        return;
    }
}

bool Scheduler::organizeCommands(int now, bool late) {
    auto next = scenario.upper_bound(now);
    while (next != scenario.end() && next->second == nullptr)
        ++next;
    if (next != scenario.end()) {
        if (truncateToInt(next->first) > now + 1) {
            // Two steps: the subscript may enter the key before the entry that is moved from.
            std::unique_ptr<scenarEvent> event = std::move(next->second);
            scenario[now + 1] = std::move(event);
        }
        return true;
    }
    std::unique_ptr<scenarEvent> read = readFromScenario();
    if (read != nullptr && !read->atoms.empty())
        scenario[late ? time + 1 : time] = std::move(read);
    return false;
}

std::vector<Atom*> Scheduler::getNoneCommands(std::vector<Atom*> const& commands) {
    std::vector<Atom*> none;
    for (Atom const* command : commands)
        for (Atom* atom : command->getStateVar()->getAtomLinks())
            if (atom->value == valueNone)
                none.push_back(atom);
    return none;
}

void Scheduler::reportUnmetEvents(double until) const {
    for (auto const& [date, event] : scenario)
        if (date <= until && event != nullptr && !event->met)
            err << "scenario event of date " << date << " met no time step\n";
}
