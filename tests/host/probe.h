#pragma once
// The host_probe helper program, run through the shell as a real process.
#include <string>

namespace hosttest {

inline std::string ProbePath() { return HOST_PROBE_PATH; }

}  // namespace hosttest
