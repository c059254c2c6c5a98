// Numbers drawn by seed, the same on every machine and with every library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace fuzz {

// The generator "splitmix64": each seed, also a small one, begins a stream of its own.
class Random {
public:
    explicit Random(std::uint64_t seed) : state(seed) {}

    std::uint64_t next() {
        state += 0x9e3779b97f4a7c15u;
        std::uint64_t z = state;
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
        return z ^ (z >> 31);
    }
    // 0 to count - 1; 0 when the count is 0.
    std::size_t below(std::size_t count) {
        return count == 0 ? 0 : static_cast<std::size_t>(next() % count);
    }
    int between(int least, int most) {
        return least + static_cast<int>(below(static_cast<std::size_t>(most - least + 1)));
    }
    bool chance(int percent) { return below(100) < static_cast<std::size_t>(percent); }
    // 0 to 1.
    double fraction() { return static_cast<double>(next() >> 11) / 9007199254740992.0; }
    // One of the entries, of which there is at least one.
    template <typename Entries>
    auto const& pick(Entries const& entries) {
        return entries[below(std::size(entries))];
    }

private:
    std::uint64_t state;
};

}  // namespace fuzz
