// What the user of tavro-quality asks for.
#pragma once

#include <string>
#include <vector>

namespace quality {

inline constexpr char usage[] =
    "usage: tavro-quality [--rules=RULES] [--short] [--seeds=N] [--jobs=N] [--no-costs] [--aims]\n"
    "  --rules=RULES  the set of rules that the engine keeps to; classic unless told\n"
    "  --short        one seed\n"
    "  --seeds=N      N seeds of each day with a fault, 5 unless told; 5 N of each healthy day, 20 "
    "N "
    "of each\n"
    "                 story of the feed line\n"
    "  --jobs=N       threads; the tables are the same for each number, 1 unless told\n"
    "  --no-costs     without the tables of time and memory: the same bytes each time\n"
    "  --aims         in place of the tables: what the rules are meant to reach, day by day\n";

// The exit status after a word that is not understood.
inline constexpr int wrongCall = 2;

struct Wishes {
    std::string rules = "classic";
    bool brief = false;
    unsigned seeds = 5;
    unsigned jobs = 1;
    bool costs = true;
    bool aims = false;
    bool help = false;

    // Returns what is wrong with the words; "" when nothing is.
    std::string read(std::vector<std::string> const& words);

    int faultySeeds() const { return brief ? 1 : static_cast<int>(seeds); }
    int healthySeeds() const { return 5 * faultySeeds(); }
    int lineSeeds() const { return 20 * faultySeeds(); }
    // Of the aims: 6 healthy days and 24 with a fault for each seed, and wild ones.
    int aimedHealthySeeds() const { return brief ? 2 : 50; }
    int aimedFaultySeeds() const { return brief ? 1 : 20; }
    int wildDays() const { return brief ? 50 : 1000; }
};

}  // namespace quality
