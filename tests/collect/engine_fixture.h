#pragma once
// An App built over a scratch HOME and a fake client install root, so that no
// case touches the runner's own home, /var/log or /opt.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "app/app.h"
#include "support/temp_dir.h"

namespace collecttest {

namespace fs = std::filesystem;

class EngineTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Creates the logs and issue folders below the scratch HOME.
  void MakeClientFolders();
  // A PATH of links to the named system tools plus the scratch bin folder.
  void UseToolsOnly(std::initializer_list<const char*> tools);
  fs::path Bin() const { return scratch_ / "bin"; }

  testsupport::TempDir scratch_;
  fs::path home_;
  fs::path root_;
  std::unique_ptr<testsupport::ScopedEnv> homeEnv_;
  std::unique_ptr<testsupport::ScopedEnv> rootEnv_;
  std::unique_ptr<testsupport::ScopedEnv> pathEnv_;
  std::unique_ptr<App> app_;
};

// Runs body in a forked child (for process-wide changes such as signal
// dispositions or limits) with stderr sent to stderrFile; body's result, or -1.
int RunInChild(const std::function<int()>& body, const fs::path& stderrFile);

}  // namespace collecttest
