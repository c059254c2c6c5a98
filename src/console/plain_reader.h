// Lines from a pipe or a file, where no byte is a key.
#pragma once

#include <cstdio>
#include <optional>
#include <string>

// Reads a line, without what ends it; nothing at the end of *in*, which may go on later. Takes one
// byte at a time, so that what follows the line is left to other readers of the same input.
//
// *out* shows the prompt before the line is read, and then the line as a terminal would show what
// was typed: a tab as blanks, another control character as ^ and its letter.
std::optional<std::string> readPlainLine(std::FILE* in, std::FILE* out, char const* prompt);
