// The view's making and end, covers, logs and error texts.
#include "trajectory/DataManagerrt.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

#include "model/StateVar.h"
#include "trajectory/Trajectoryrt.h"

DataManager::DataManager(Plant const& plant, Host& host, Rules const& rules)
    : plant(plant),
      host(host),
      rules(rules),
      out(host.out()),
      err(host.err()),
      book(out, err, rules),
      active_comps(plant.active_comps),
      active_atoms(plant.active_atoms),
      active_trans(plant.active_trans),
      cls(plant.cls),
      model_name(plant.name) {
    init();
}

DataManager::~DataManager() {
    if (plantInMaking != nullptr)
        return;
    out << "calling destructor of DataManager\n";
    tracked_traj.clear();
    out << "tracked_traj deleted\n" << std::flush;
}

int DataManager::init() {
    states_cover[0] = 0.0;
    return 1;
}

void DataManager::tellComplaints(Comp const& comp) const {
    for (auto const& variable : comp.getStateVariables())
        out << variable->complaints;
}

bool DataManager::inVector(Atom const* atom, std::vector<Atom*> const* atoms) {
    return std::find(atoms->begin(), atoms->end(), atom) != atoms->end();
}

bool DataManager::inList(char const* text, std::list<char const*> const* texts) {
    return std::any_of(texts->begin(), texts->end(),
                       [&](char const* other) { return std::strcmp(text, other) == 0; });
}

bool DataManager::inMultimap(Atom const* atom,
                             std::multimap<std::string, Atom*, eqstring> const* atoms) {
    return std::any_of(atoms->begin(), atoms->end(),
                       [&](auto const& entry) { return entry.second == atom; });
}

void DataManager::updateStatesCover(int t, Transition const* tr) {
    states_cover[t] += tr->weight / static_cast<double>(active_comps.size());
}

void DataManager::updateTrajectoriesCover() {
    for (auto const& entry : states_cover)
        traj_cover += entry.second;
    traj_cover /= static_cast<double>(states_cover.size());
}

void DataManager::addBmkEntry(int step, double seconds, bool flag, unsigned candidates) {
    host.stepLog() << step << " " << seconds << " " << flag << " " << candidates << "\n";
}

void DataManager::addItmsBmkEntry(double seconds, unsigned results,
                                  std::vector<char const*> const* ids) {
    std::ostream& log = host.propagationLog();
    log << itms_calls++ << " " << seconds << " " << results << " ";
    for (char const* id : *ids)
        log << id << " ";
    log << "\n";
}

void DataManager::dataError(long kind, long code) {
    // Indexed from 1.
    constexpr char const* messages[] = {"component doesn't exist."};
    constexpr long count = sizeof messages / sizeof messages[0];
    char const* message = code >= 1 && code <= count ? messages[code - 1] : "unknown error.";
    if (kind == 0)
        err << "Request error.\n ..." << message << "\n";
    // Required: a request error goes on into the warning.
    if (kind == 0 || kind == 1)
        err << "Warning.\n  ..." << message << "\n";
}

namespace {

// The widest table that the check of joint probabilities builds, in entries.
constexpr std::uint64_t widestTable = 1 << 24;

// 0 as soon as one component has no transition; stays at the largest number beyond it.
std::uint64_t numberOfJointTransitions(string_map<Comp*> const& comps) {
    constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t product = 1;
    for (auto const& entry : comps) {
        if (entry.second == nullptr)
            continue;
        std::uint64_t const count = entry.second->transitions.size();
        product = count != 0 && product > largest / count ? largest : product * count;
    }
    return product;
}

// Fills *table* component by component; the entries in use grow from *width*. Returns the new
// width. Required: while the width is 1 the entries are overwritten and not multiplied, so that a
// first component with a single transition takes no part in the products.
std::size_t spreadComponent(Comp const& comp, std::vector<double>& table, std::size_t width) {
    std::vector<double> const scratch(table.begin(), table.begin() + static_cast<long>(width));
    std::size_t const count = comp.transitions.size();
    for (std::size_t k = 0; k < count; ++k) {
        double const proba = comp.transitions[k]->guardProba;
        for (std::size_t i = 0; i < width; ++i)
            table[k * width + i] = width == 1 ? proba : scratch[i] * proba;
    }
    return width == 1 ? count : width * count;
}

}  // namespace

void DataManager::testTransitionsProbas() {
    out << "[testTransitionsProbas] --> testing...\n";
    std::uint64_t const size = numberOfJointTransitions(active_comps);
    out << "[testTransitionsProbas] --> tabd size : " << size << "\n";
    if (size > widestTable) {
        err << "Too many joint transitions to test their probabilities.\n";
        return;
    }
    if (size == 0)
        err << "A component has no transitions: there are no joint probabilities to test.\n";
    std::vector<double> table(size);
    std::size_t width = 1;
    for (auto const& entry : active_comps)
        if (size != 0 && entry.second != nullptr)
            width = spreadComponent(*entry.second, table, width);
    double sum = 0.0;
    for (double const proba : table) {
        out << proba << " ";
        sum += proba;
    }
    out << "test of transitions probabilities : " << sum << "\n";
}
