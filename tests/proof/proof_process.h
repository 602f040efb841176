#pragma once
// Starting the proof client (a separate program, so that each run has the
// logging library's per-process state fresh) and waiting for children with
// a deadline, so that a blocked child fails the test instead of hanging it.
#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace prooftest {

// Runs the proof client with args, HOME set to home and its standard output
// (and error) in output; returns its pid.
pid_t StartProofClient(const std::vector<std::string>& args, const std::filesystem::path& home,
                       const std::filesystem::path& output);

// The raw wait status, or nothing when the child was still running after
// limit (it is then killed and reaped).
std::optional<int> WaitWithin(pid_t child, std::chrono::seconds limit);

// Runs the client to its end (at most limit) and returns what it printed;
// the wait status goes to *status.
std::string RunProofClient(const std::vector<std::string>& args, const std::filesystem::path& home,
                           std::optional<int>* status,
                           std::chrono::seconds limit = std::chrono::seconds(60));

}  // namespace prooftest
