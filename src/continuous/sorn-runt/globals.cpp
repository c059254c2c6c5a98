// The globals of the engine: its switch, its counter, the current data line, the current split.
#include "continuous/sorn-runt.h"

int env_opti = 1;
int rt_num = 0;
std::vector<double> inps, meas;
std::multimap<long, s_runtime*, std::less<long>> nrt;
