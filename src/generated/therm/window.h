// The continuous window of the reference model.
#pragma once

// In cycles: what the runtime can be moved back by, and so the length of the histories.
inline constexpr int thermWindow = 300;
