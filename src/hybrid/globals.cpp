// The globals of a run.
#include "hybrid/tavro-runt.h"

s_runtime* tavro_rt = nullptr;
HybMap tracked_trajs, ntrajs, misbtrajs;
hybTrajectory* hybNT = nullptr;
