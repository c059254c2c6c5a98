// Where the printers of the continuous engine write, and in which of their two forms.
#pragma once

#include <ostream>

struct s_Printer {
    std::ostream& stream;
    // Takes what goes to standard output whatever the stream: a few printers do that.
    std::ostream& out;
    bool forPeople;  // the form with names and brackets; else the bare numbers that plots read
    // Takes the complaint about a condition that is missing, which is a fault of the model; null:
    // it is not told.
    std::ostream* err = nullptr;
};
