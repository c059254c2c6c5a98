// A guard against a slip that costs data: a file that is to be written and to be read, or to be
// written by two.
//
// Opening it would empty it, so that each of these is to be asked before the file is opened. Names
// do not count: a link is the file that it leads to.
#pragma once

#include <string>

// Whether both names lead to one regular file, or to the place where one would be made.
bool leadToOneFile(std::string const& one, std::string const& other);
// Whether *output* is a file that a run or the console reads; tells each that it is.
bool wouldOverwriteInput(std::string const& output);
// Whether *output*, a graph or a trace, is another file that a run writes; tells each that it is.
bool wouldOverwriteOutput(std::string const& output);
// Both of all files that are known before a run begins.
bool wouldOverwriteFiles();
// Whether the log *output* is one of the files that the arguments of the program may name.
bool wouldOverwriteArgument(std::string const& output, int count, char const* const* arguments);
