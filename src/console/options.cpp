// Reading the options of the command line.
#include "console/options.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <optional>
#include <string_view>

#include "console/process.h"
#include "continuous/records.h"

namespace {

constexpr int statusOfWrongOption = 2;

[[noreturn]] void refuse(std::string const& message) {
    std::fprintf(stderr, "%s\n", message.c_str());
    leaveProcess(statusOfWrongOption);
}

// The text behind *name* in the argument, or nothing when the argument does not begin so.
std::optional<std::string_view> valueOf(std::string_view argument, std::string_view name) {
    if (argument.substr(0, name.size()) != name)
        return std::nullopt;
    return argument.substr(name.size());
}

template <typename Number>
std::optional<Number> numberIn(std::string_view text) {
    Number number{};
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return number;
}

void takeRules(std::string_view value, RunSettings& settings) {
    std::string wrong;
    if (!Rules::read(value, settings.rules, wrong))
        refuse("--rules: there is no rule \"" + wrong +
               "\"; expecting classic, sharp, or names with commas between: " + Rules::names());
}

void takeCandidates(std::string_view value, RunSettings& settings) {
    std::optional<int> const number = numberIn<int>(value);
    if (!number || *number < 1)
        refuse("--candidates: \"" + std::string(value) + "\" is no number of at least 1");
    settings.candidates = *number;
}

// One bound: of a measure by its name, or without a name of all.
void takeBound(std::string_view word, RunSettings& settings) {
    std::size_t const equals = word.rfind('=');
    bool const named = equals != std::string_view::npos;
    std::optional<double> const bound = numberIn<double>(named ? word.substr(equals + 1) : word);
    if (!bound || !std::isfinite(*bound) || *bound < 0.0)
        refuse("--noise: \"" + std::string(word) +
               "\" is neither a bound nor MEASURE=BOUND with a bound of 0 or more");
    settings.noise[std::string(named ? word.substr(0, equals) : "")] = *bound;
}

void takeNoise(std::string_view value, RunSettings& settings) {
    for (std::size_t start = 0; start <= value.size();) {
        std::size_t const end = std::min(value.find(',', start), value.size());
        takeBound(value.substr(start, end - start), settings);
        start = end + 1;
    }
}

}  // namespace

bool isStrict(char const* argument) {
    if (std::string_view(argument) != "--strict")
        return false;
    strictSession = true;
    return true;
}

bool takeOption(char const* argument, RunSettings& settings) {
    if (auto const value = valueOf(argument, "--rules="))
        takeRules(*value, settings);
    else if (auto const candidates = valueOf(argument, "--candidates="))
        takeCandidates(*candidates, settings);
    else if (auto const noise = valueOf(argument, "--noise="))
        takeNoise(*noise, settings);
    else
        return false;
    return true;
}

void checkNoise(RunSettings const& settings, s_runtime const* rt) {
    for (auto const& entry : settings.noise) {
        if (entry.first.empty())
            continue;
        bool const measured = rt != nullptr && std::any_of(rt->measure.begin(), rt->measure.end(),
                                                           [&entry](s_Variable const* v) {
                                                               return v->nom == entry.first;
                                                           });
        if (!measured)
            refuse("--noise: " + entry.first + " is not measured in this plant");
    }
}

std::string optionsHelp() {
    return "Options stand before the files:\n"
           "  --rules=RULES    how it reasons: classic (the default), sharp, or, with commas "
           "between,\n"
           "                   some of " +
           Rules::names() +
           "\n"
           "  --candidates=N   follow the N likeliest candidates at most\n"
           "  --noise=BOUND    how far a measure may be from the truth; MEASURE=BOUND for one of\n"
           "                   them, and commas between several (read by the rule narrow)\n"
           "  --strict         end with status 3 if anything was lost, refused or unreadable\n";
}
