// The small models of the console sessions, built for a test.
#pragma once

class Scheduler;
struct s_runtime;

namespace session_models {

// Each fills the registry and answers its runtime, or null.
s_runtime* buildGauge(Scheduler* registry);
s_runtime* buildLamp(Scheduler* registry);
s_runtime* buildTap(Scheduler* registry);

}  // namespace session_models
