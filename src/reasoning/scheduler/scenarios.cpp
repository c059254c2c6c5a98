// Scenario files and the table of events.
//
// Two forms are read, an event a line: the dated one whole, before a hybrid run, and the undated
// one line by line, during a discrete run. Tokens are separated by blanks and line ends alone.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <iostream>
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

// The next tokens of a line, walked with strtok.
char* firstToken(Line& line) {
    return std::strtok(line.data(), separators);
}
char* nextToken() {
    return std::strtok(nullptr, separators);
}

// The atom, or null. Enters nothing for an unknown word, which does not live on.
Atom* knownAtom(char const* id) {
    auto const found = DataManager::active_atoms.find(id);
    return found == DataManager::active_atoms.end() ? nullptr : found->second;
}

void reportInvalid(char const* token) {
    std::cerr << "Scheduler::readFromScenario --> received command is not valid : " << token
              << "\n";
}

void reportReceived(bool isCommand, Atom const* atom) {
    std::cerr << "Scheduler receives " << (isCommand ? "a command: " : "an observation: ")
              << atom->getId() << "\n";
}

// Reads the atoms of the rest of a line into *event*; false on an unknown one.
bool readAtoms(scenarEvent& event, bool echo) {
    for (char const* token = nextToken(); token != nullptr; token = nextToken()) {
        if (echo)
            std::cerr << "regular token : " << token << "\n";
        Atom* atom = knownAtom(token);
        if (atom == nullptr) {
            reportInvalid(token);
            return false;
        }
        reportReceived(event.isCommand, atom);
        event.atoms.push_back(atom);
    }
    return true;
}

void reportNoKind(std::string const& path, int line) {
    std::cerr << "scenario file " << path << ", line " << line
              << ": no kind of event, line skipped\n";
}

}  // namespace

// Required: after the first command line every later line counts as one, whatever its kind.
void Scheduler::loadScenario(std::string const& path) {
    if (!openScenario(path))
        return;
    bool isCommand = false;
    Line line;
    while (std::fgets(line.data(), lineSize, scenarioFile.get()) != nullptr) {
        ++scenarioLine;
        char const* date = firstToken(line);
        if (date == nullptr) {
            reportNoKind(path, scenarioLine);
            continue;
        }
        double const when = std::atof(date);
        std::cerr << "event date: " << when << "\n";
        char const* kind = nextToken();
        if (kind == nullptr) {
            reportNoKind(path, scenarioLine);
            continue;
        }
        if (std::strcmp(kind, commandKind) == 0)
            isCommand = true;
        auto event = std::make_unique<scenarEvent>();
        event->isCommand = isCommand;
        if (!readAtoms(*event, true))
            return;
        scenario[when] = std::move(event);
    }
    scenarioFile.reset();
}

bool Scheduler::openScenario(std::string const& path) {
    scenarioPath = path;
    scenarioLine = 0;
    scenarioFile.reset(std::fopen(path.c_str(), "r"));
    if (scenarioFile == nullptr)
        std::cerr << "can't open scenario file: " << path << "\n";
    return scenarioFile != nullptr;
}

std::unique_ptr<scenarEvent> Scheduler::readFromScenario() {
    Line line;
    while (scenarioFile != nullptr &&
           std::fgets(line.data(), lineSize, scenarioFile.get()) != nullptr) {
        ++scenarioLine;
        char const* kind = firstToken(line);
        if (kind == nullptr) {
            reportNoKind(scenarioPath, scenarioLine);
            continue;
        }
        auto event = std::make_unique<scenarEvent>();
        event->isCommand = std::strcmp(kind, commandKind) == 0;
        if (!readAtoms(*event, false))
            return nullptr;
        return event;
    }
    std::cerr << "end of the scenario !\n";
    return nullptr;
}

void Scheduler::addCommandEvent(Atom* atom, int when) {
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
            std::cerr << "scenario event of date " << date << " met no time step\n";
}
