#include "engine_fixture.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/fake_root.h"
#include "support/files.h"

namespace collecttest {

void EngineTest::SetUp() {
  home_ = scratch_ / "home";
  root_ = scratch_ / "root";
  fs::create_directories(home_);
  fs::create_directories(Bin());
  testsupport::MakeFakeInstallRoot(root_);
  // The dump tool prints its file's path split over two lines with CRLF ends.
  const fs::path dump = scratch_ / "dumps" / "envdump-1.txt";
  testsupport::WriteScript(root_ / "util/envdump",
                           "mkdir -p " + dump.parent_path().string() + "\nprintf 'dump of the environment\\n' > " +
                               dump.string() + "\nprintf '" + dump.parent_path().string() + "\\r\\n/" +
                               dump.filename().string() + "\\r\\n'");
  testsupport::WriteScript(root_ / "util/desklinecheck.sh", "echo all checks passed");
  testsupport::WriteFile(root_ / "config/KeywardConfig.xml", "<keyward port=\"4172\"/>\n");
  homeEnv_ = std::make_unique<testsupport::ScopedEnv>("HOME", home_.c_str());
  rootEnv_ = std::make_unique<testsupport::ScopedEnv>("ORBROOT", root_.c_str());
  app_ = std::make_unique<App>();
  // Never read the machine's own client log.
  app_->systemClientLog = scratch_ / "system" / "ORBClient.log";
  gApp = app_.get();
}

void EngineTest::TearDown() {
  gApp = nullptr;
  app_.reset();
}

void EngineTest::MakeClientFolders() { fs::create_directories(app_->issueFolder); }

void EngineTest::UseToolsOnly(std::initializer_list<const char*> tools) {
  testsupport::LinkSystemTools(scratch_ / "tools", tools);
  const std::string path = Bin().string() + ":" + (scratch_ / "tools").string();
  pathEnv_ = std::make_unique<testsupport::ScopedEnv>("PATH", path.c_str());
}

int RunInChild(const std::function<int()>& body, const fs::path& stderrFile) {
  fflush(nullptr);
  const pid_t child = fork();
  if (child < 0) return -1;
  if (child == 0) {
    const int fd = open(stderrFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (fd < 0 || dup2(fd, STDERR_FILENO) < 0) _exit(255);
    close(fd);
    const int result = body();
    fflush(nullptr);
    _exit(result & 0xff);
  }
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace collecttest
