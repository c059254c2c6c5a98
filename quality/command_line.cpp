// The words of the command line.
#include "quality/command_line.h"

#include <charconv>

#include "quality/rules.h"

namespace quality {

namespace {

// Whether the word is the option; its value then is what follows.
bool isOption(std::string const& word, std::string const& option, std::string& value) {
    if (word.rfind(option, 0) != 0)
        return false;
    value = word.substr(option.size());
    return true;
}

bool readCount(std::string const& text, unsigned& count) {
    char const* const end = text.data() + text.size();
    auto const [stop, error] = std::from_chars(text.data(), end, count);
    return error == std::errc{} && stop == end && count > 0;
}

}  // namespace

std::string Wishes::read(std::vector<std::string> const& words) {
    for (std::string const& word : words) {
        std::string value;
        if (word == "--short")
            brief = true;
        else if (word == "--no-costs")
            costs = false;
        else if (word == "--aims")
            aims = true;
        else if (word == "--help")
            help = true;
        else if (isOption(word, "--rules=", rules)) {
            if (!knowsRules(rules))
                return "the engine knows no rules \"" + rules + "\"";
        } else if (isOption(word, "--jobs=", value)) {
            if (!readCount(value, jobs))
                return "--jobs takes a number from 1 on, not \"" + value + "\"";
        } else if (isOption(word, "--seeds=", value)) {
            if (!readCount(value, seeds))
                return "--seeds takes a number from 1 on, not \"" + value + "\"";
        } else
            return "there is no option \"" + word + "\"";
    }
    return "";
}

}  // namespace quality
