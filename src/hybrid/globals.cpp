// The globals of a run.
#include "hybrid/tavro-runt.h"

s_runtime* tavro_rt = nullptr;
HybMap tracked_trajs, ntrajs, misbtrajs;
hybTrajectory* hybNT = nullptr;
double last_detection_time = -1.0;
bool diag_flag = false;
