#include "tavro/validators.h"

#include <CLI/CLI.hpp>
#include <cmath>

CLI::Validator countFrom(int least) {
    return {[least](std::string const& word) {
                int value = 0;
                bool const isOne = CLI::detail::lexical_cast(word, value) && value >= least;
                return isOne ? std::string()
                             : word + ": write a whole number, at least " + std::to_string(least);
            },
            ""};
}

CLI::Validator notNegative() {
    return {[](std::string const& word) {
                double value = 0.0;
                bool const isOne =
                    CLI::detail::lexical_cast(word, value) && std::isfinite(value) && value >= 0.0;
                return isOne ? std::string() : word + ": write a number, at least 0";
            },
            ""};
}
