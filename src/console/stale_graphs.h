// Graphs that an earlier run left in the working directory: they bear the names of this one's.
#pragma once

// Removes the graphs whose number is *count* or above, and says so. What this program did not write
// under such a name stays: a link, a directory, a file that begins otherwise.
void removeStaleGraphs(int count);
// For a run that should write graphs and has none: says so, and whether there are earlier ones.
void tellNoGraphs();
