// Reading suspects.
#include "run/diagnosis_text.h"

#include <charconv>
#include <optional>

namespace {

// The text up to *end*, which is taken too; nothing without it.
std::optional<std::string_view> upTo(std::string_view& text, char end) {
    std::size_t const at = text.find(end);
    if (at == std::string_view::npos)
        return std::nullopt;
    std::string_view const taken = text.substr(0, at);
    text.remove_prefix(at + 1);
    return taken;
}

bool take(std::string_view& text, char c) {
    if (text.empty() || text.front() != c)
        return false;
    text.remove_prefix(1);
    return true;
}

// What stands between the curly brackets.
std::optional<tavro::Suspect> readSuspect(std::string_view text) {
    tavro::Suspect suspect;
    std::optional<std::string_view> const name = upTo(text, ',');
    std::optional<std::string_view> const delay = name ? upTo(text, ',') : std::nullopt;
    if (!delay || std::from_chars(delay->begin(), delay->end(), suspect.delay).ec != std::errc())
        return std::nullopt;
    suspect.influence = *name;
    suspect.condition = text;
    return suspect;
}

}  // namespace

std::vector<tavro::SuspectSet> readDiagnosis(std::string_view text) {
    std::vector<tavro::SuspectSet> sets;
    while (take(text, '[')) {
        tavro::SuspectSet set;
        while (take(text, '{')) {
            std::optional<std::string_view> const inside = upTo(text, '}');
            std::optional<tavro::Suspect> suspect = inside ? readSuspect(*inside) : std::nullopt;
            if (!suspect)
                return sets;
            set.push_back(std::move(*suspect));
        }
        if (!take(text, ']'))
            return sets;
        sets.push_back(std::move(set));
    }
    return sets;
}
