#pragma once
// The library caches its mode, paths and link per process, so a test that
// needs its own HOME or a fresh library state runs its body in a forked child.
#include <functional>
#include <string>

namespace logclient_test {

// Runs body in a child (with HOME set to home unless empty); true when it
// exited 0. Assertion failures in the child are printed there and make it exit 1.
bool PassedForked(const std::function<void()>& body, const std::string& home = {});

// Number of open socket descriptors of this process.
int OpenSocketCount();

}  // namespace logclient_test

#define EXPECT_FORKED_PASS(home, ...) EXPECT_TRUE(::logclient_test::PassedForked(__VA_ARGS__, home))
