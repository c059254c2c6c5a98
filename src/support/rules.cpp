// The names of the rules.
#include "support/rules.h"

#include <algorithm>
#include <array>

namespace {

struct Named {
    char const* name;
    bool Rules::*flag;
};

constexpr std::array<Named, 12> all{{{"continuity", &Rules::continuity},
                                     {"regions", &Rules::regions},
                                     {"narrow", &Rules::narrow},
                                     {"histories", &Rules::histories},
                                     {"likelihood", &Rules::likelihood},
                                     {"unknown", &Rules::unknown},
                                     {"again", &Rules::again},
                                     {"dates", &Rules::dates},
                                     {"cover", &Rules::cover},
                                     {"limit", &Rules::limit},
                                     {"suspects", &Rules::suspects},
                                     {"derived", &Rules::derived}}};

// A word stands for a rule, or for a whole set, which it adds.
bool addWord(std::string_view word, Rules& rules) {
    if (word == "classic")
        return true;
    for (Named const& rule : all)
        if (word == rule.name || word == "sharp")
            rules.*rule.flag = true;
    return word == "sharp" || std::any_of(all.begin(), all.end(),
                                          [word](Named const& rule) { return word == rule.name; });
}

template <typename Wanted>
std::string joined(char const* between, Wanted wanted) {
    std::string text;
    for (Named const& rule : all)
        if (wanted(rule)) {
            text += text.empty() ? "" : between;
            text += rule.name;
        }
    return text;
}

}  // namespace

Rules Rules::sharp() {
    Rules rules;
    addWord("sharp", rules);
    return rules;
}

bool Rules::read(std::string_view text, Rules& rules, std::string& wrong) {
    Rules found;
    for (std::size_t start = 0; start <= text.size();) {
        std::size_t const end = std::min(text.find(',', start), text.size());
        std::string_view const word = text.substr(start, end - start);
        if (!addWord(word, found)) {
            wrong = word;
            return false;
        }
        start = end + 1;
    }
    rules = found;
    return true;
}

std::string Rules::text() const {
    if (*this == classicRules)
        return "classic";
    if (*this == sharp())
        return "sharp";
    return joined(",", [this](Named const& rule) { return this->*rule.flag; });
}

std::string Rules::names() {
    return joined(", ", [](Named const&) { return true; });
}
