// The table of every display variable at every step of a run, kept in each runtime (extra).
#pragma once

#include "continuous/records.h"

// Puts the current bounds of the first *count* display variables into row *row*, counted from 1 and
// rounded up. A row before the first is skipped, and so is one behind the table's end.
void tavro_setRTDisplays(int count, s_runtime* rt, double row);

// Makes room for *rows* rows. 0, with the table as it was, when they are too many to be counted.
int initDispAll(s_runtime* rt, double rows);
