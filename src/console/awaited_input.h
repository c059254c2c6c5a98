// An input whose lines may be long in coming, such as a pipe.
//
// Who stops the run does not wait for them: a signal that asks for that ends the wait, with
// RunStopped (overdue), which comes out of whatever reads the stream. That of a regular file is
// never waited for, and std::ifstream does.
#pragma once

#include <istream>
#include <memory>
#include <string>

// Whether the file is there and its lines may be long in coming.
bool isAwaited(std::string const& path);

// Null when the file cannot be opened, which may be waited for as well: a pipe has to have a
// writer.
std::unique_ptr<std::istream> openAwaited(std::string const& path);
