#pragma once
// The library caches its mode, paths and link per process, so a test that
// needs its own HOME or a fresh library state runs its body in a forked child.
#include <functional>
#include <string>

namespace logclient_test {

// Runs body in a child with HOME set to home (when not empty) and returns
// the raw wait status. Assertion failures in the child are printed there and
// make it exit 1.
int RunForked(const std::function<void()>& body, const std::string& home = {});

// True for a child that exited 0.
bool ExitedCleanly(int status);

// Number of open socket descriptors of this process.
int OpenSocketCount();

}  // namespace logclient_test

// Fails the current test unless body passed in its own process.
#define EXPECT_FORKED_PASS(home, ...) \
  EXPECT_TRUE(::logclient_test::ExitedCleanly(::logclient_test::RunForked(__VA_ARGS__, home)))
