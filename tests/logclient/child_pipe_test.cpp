// The shell-less child pipe, driven with ordinary commands.
#include <gtest/gtest.h>

#include "logclient/logclient.h"
#include "support/fixtures.h"

TEST(ChildPipe, ExpandsAbsolutePatternsOnlyAndKeepsOnesThatMatchNothing) {
  testsupport::TempDir dir;
  testsupport::WriteFile(dir / "a1", "");
  testsupport::WriteFile(dir / "a2", "");
  std::string program = "printf", format = "%s\\n", pattern = dir.str() + "/a*", none = dir.str() + "/none*",
              log = "*.log";
  char* argv[] = {program.data(), format.data(), pattern.data(), none.data(), log.data(), nullptr};
  pid_t pid = 0;
  FILE* stream = child_popen(argv, "r", &pid);
  ASSERT_NE(stream, nullptr);
  std::string output;
  for (int c; (c = fgetc(stream)) != EOF;) output += static_cast<char>(c);
  EXPECT_EQ(output, dir.str() + "/a1\n" + dir.str() + "/a2\n" + none + "\n*.log\n");
  EXPECT_EQ(child_pclose(stream, pid), 0);
}
