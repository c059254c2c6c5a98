// The registry's members, covers, benchmark logs and error texts.
#include "model/DataManagerrt.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <limits>

#include "support/process.h"

namespace {

std::ofstream openLog(char const* name) {
    keepStandardStreams();
    return std::ofstream(name, std::ios::trunc);
}

}  // namespace

string_map<Comp*> DataManager::active_comps;
string_map<Atom*> DataManager::active_atoms;
hash_map<int, Transition*> DataManager::active_trans;
std::vector<std::unique_ptr<Clause>> DataManager::cls;
double DataManager::traj_cover = 0.0;
hash_map<int, double> DataManager::states_cover;
unsigned DataManager::trajectories_created = 1;
unsigned DataManager::trajectories_checked = 0;
unsigned DataManager::transitions_checked = 0;
unsigned DataManager::trajectories_destroyed = 0;
std::string DataManager::model_name;
std::ofstream DataManager::benchmk_stream = openLog("bench1.bmk");
std::ofstream DataManager::itms_stream = openLog("itmsbench.bmk");
unsigned DataManager::itms_calls = 0;
std::vector<owned<Comp>> DataManager::ownedComps;

DataManager::DataManager() {
    init();
}

int DataManager::init() {
    states_cover[0] = 0.0;
    return 1;
}

Clause* DataManager::addClause(std::unique_ptr<Clause> clause) {
    cls.push_back(std::move(clause));
    return cls.back().get();
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
    benchmk_stream << step << " " << seconds << " " << flag << " " << candidates << "\n";
}

void DataManager::addItmsBmkEntry(double seconds, unsigned results,
                                  std::vector<char const*> const* ids) {
    itms_stream << itms_calls++ << " " << seconds << " " << results << " ";
    for (char const* id : *ids)
        itms_stream << id << " ";
    itms_stream << "\n";
}

void DataManager::dataError(long kind, long code) {
    // Indexed from 1.
    static char const* const messages[] = {"component doesn't exist."};
    constexpr long count = sizeof messages / sizeof messages[0];
    char const* message = code >= 1 && code <= count ? messages[code - 1] : "unknown error.";
    if (kind == 0)
        std::fprintf(stderr, "Request error.\n ...%s\n", message);
    // Required: a request error goes on into the warning.
    if (kind == 0 || kind == 1)
        std::fprintf(stderr, "Warning.\n  ...%s\n", message);
}

namespace {

// The widest table that the check of joint probabilities builds, in entries.
constexpr std::uint64_t widestTable = 1 << 24;

// 0 as soon as one component has no transition; stays at the largest number beyond it.
std::uint64_t numberOfJointTransitions() {
    constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t product = 1;
    for (auto const& entry : DataManager::active_comps) {
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
    std::cout << "[testTransitionsProbas] --> testing...\n";
    std::uint64_t const size = numberOfJointTransitions();
    std::cout << "[testTransitionsProbas] --> tabd size : " << size << "\n";
    if (size > widestTable) {
        std::cerr << "Too many joint transitions to test their probabilities.\n";
        return;
    }
    if (size == 0)
        std::cerr << "A component has no transitions: there are no joint probabilities to test.\n";
    std::vector<double> table(size);
    std::size_t width = 1;
    for (auto const& entry : active_comps)
        if (size != 0 && entry.second != nullptr)
            width = spreadComponent(*entry.second, table, width);
    double sum = 0.0;
    for (double const proba : table) {
        std::cout << proba << " ";
        sum += proba;
    }
    std::cout << "test of transitions probabilities : " << sum << "\n";
}
