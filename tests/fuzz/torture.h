// Letting the calls of one session fail, one after the other.
#pragma once

namespace fuzz {

// Tries a short session with every command once for each call that can fail: the 1st, the 2nd and
// so on, until the session passes untouched; each alone and with all that follow. Of allocations,
// of which there are many, every *stride*th is tried, and of all else every one. Tells what it
// finds, and returns the number of findings.
int torture(long stride);

}  // namespace fuzz
