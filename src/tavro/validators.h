// Numbers of the command line, refused in words that a reader can use.
#pragma once

namespace CLI {
class Validator;
}

// A whole number that is not below *least*.
CLI::Validator countFrom(int least);

// A finite number, zero or above.
CLI::Validator notNegative();
