#include "host/user_paths.h"

#include <gtest/gtest.h>

#include "support/files.h"
#include "support/temp_dir.h"

using testsupport::ScopedEnv;

TEST(ExecutableOnPath, OthersExecuteBitOverlongElementsAndEmptyElements) {
  testsupport::TempDir dir;
  std::string bin = (dir / "bin").string(), longElement = "/" + std::string(200, 'x');
  testsupport::WriteScript(bin + "/tool", "exit 0", 0701);
  testsupport::WriteScript(bin + "/owner_group_only", "exit 0", 0750);
  ScopedEnv path("PATH", (longElement + ":" + bin).c_str());
  EXPECT_TRUE(IsExecutableOnPath(longElement.size(), "/tool"));
  EXPECT_FALSE(IsExecutableOnPath(longElement.size(), "/owner_group_only"));
  EXPECT_FALSE(IsExecutableOnPath(100, "/tool")) << "the overlong first element stops the search";
  // An empty element joins the name as it is, an absolute path here.
  ScopedEnv emptyElement("PATH", "/nonexistent::/nonexistent");
  EXPECT_TRUE(IsExecutableOnPath(1024, (bin + "/tool").c_str()));
  ScopedEnv noEmptyElement("PATH", "/nonexistent");
  EXPECT_FALSE(IsExecutableOnPath(1024, (bin + "/tool").c_str()));
}
