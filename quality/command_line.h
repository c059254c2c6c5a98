// What the user of tavro-quality asks for.
#pragma once

#include <string>
#include <vector>

namespace quality {

inline constexpr char usage[] =
    "usage: tavro-quality [--rules=RULES] [--short] [--jobs=N] [--no-costs]\n"
    "                     [--aims]\n"
    "  --rules=RULES  the set of rules that the engine keeps to; classic unless told\n"
    "  --short        few seeds: seconds instead of minutes\n"
    "  --jobs=N       threads; the tables are the same for each number, 1 unless told\n"
    "  --no-costs     without the tables of time and memory: the same bytes each time\n"
    "  --aims         in place of the tables: what the rules are meant to reach, day by day\n";

// The exit status after a word that is not understood.
inline constexpr int wrongCall = 2;

struct Wishes {
    std::string rules = "classic";
    bool brief = false;
    unsigned jobs = 1;
    bool costs = true;
    bool aims = false;
    bool help = false;

    // Returns what is wrong with the words; "" when nothing is.
    std::string read(std::vector<std::string> const& words);

    int healthySeeds() const { return brief ? 4 : 25; }
    int faultySeeds() const { return brief ? 1 : 5; }
    // The days of the aims: 6 healthy and 24 faulty ones for each seed, and wild ones.
    int aimedHealthySeeds() const { return brief ? 2 : 50; }
    int aimedFaultySeeds() const { return brief ? 1 : 20; }
    int wildDays() const { return brief ? 50 : 1000; }
    int lineSeeds() const { return brief ? 10 : 100; }
};

}  // namespace quality
