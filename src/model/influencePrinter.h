// What the model expects of the continuous side: a component prints its influences through this.
#pragma once

struct s_Influence;

// Prints one influence on standard output, in the form of the runtime's printers.
void printInfluence(s_Influence const* influence);
