#pragma once
// GTK tests run against a private Xvfb server started for the test process.
#include <gtest/gtest.h>
#include <sys/types.h>

#include <memory>

#include "support/temp_dir.h"

namespace testsupport {

class XvfbEnvironment : public ::testing::Environment {
 public:
  void SetUp() override;
  void TearDown() override;

 private:
  pid_t server_ = -1;
  // GLib fixes the XDG folders at first use; the file chooser's recent-files
  // list and caches go here instead of the runner's home.
  std::unique_ptr<TempDir> userDirs_;
};

// Starts Xvfb on a free display and exports DISPLAY; returns its pid or -1.
pid_t StartXvfb();
void StopXvfb(pid_t server);

}  // namespace testsupport
