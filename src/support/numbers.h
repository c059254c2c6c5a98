// Numbers that a user typed, brought into the whole numbers that the engine counts with.
#pragma once

// Truncates towards zero; values beyond a 32-bit signed number become its largest or smallest one,
// and not-a-number becomes 0, so that the conversion is always defined.
int truncateToInt(double value);
