// Numbers that a user typed, brought into the whole numbers that the engine counts with, and
// numbers brought into text.
#pragma once

#include <string>

// Truncates towards zero; values beyond a 32-bit signed number become its largest or smallest one,
// and not-a-number becomes 0, so that the conversion is always defined.
int truncateToInt(double value);

// Six significant digits, without trailing zeros, with an exponent where that is shorter: what a
// fresh stream writes, whatever the flags and the locale of the stream that it goes to.
std::string shortText(double value);

// *text* with blanks before it, or behind it, up to *width* characters.
std::string flushRight(std::string const& text, int width);
std::string flushLeft(std::string const& text, int width);
