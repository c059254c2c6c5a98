// A guard against a slip that costs data: a file that is to be written and to be read.
#pragma once

// Whether a file that a run would write is one that it would read, by whatever names or links;
// tells each. Opening it would empty it, so that this is to be asked before the first file is
// opened.
bool wouldOverwriteInputs();
