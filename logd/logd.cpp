// logd: the log daemon of the client family. Listens on the socket the
// logging library names, takes records from any number of client programs
// and appends each as one line to the log file named in the shared
// configuration area, as long as that file lies in a log folder logd serves.
// Stops on SIGTERM or SIGINT and removes its socket; SIGHUP reopens the file.
//
// Standard output gets one line per client hello; standard error reports
// dropped clients and file trouble. The options are in logd --help and logd(8).
#include <grp.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "logclient/logclient.h"
#include "logd/area_values.h"
#include "logd/options.h"
#include "logd/server.h"

namespace {

// Every client costs a descriptor: take all the system allows.
void RaiseDescriptorLimit() {
  rlimit files{};
  if (getrlimit(RLIMIT_NOFILE, &files) != 0 || files.rlim_cur == files.rlim_max) return;
  files.rlim_cur = files.rlim_max;
  setrlimit(RLIMIT_NOFILE, &files);
}

}  // namespace

int main(int argc, char** argv) {
  logd::Options options;
  if (const int code = logd::ParseOptions(argc, argv, options); code >= 0) return code;
  const sigset_t waitMask = logd::BlockSignals();
  logd::ServedPaths paths;
  paths.systemWide = log_system_wide_mode() != 0;
  paths.socket = log_socket_path();
  paths.area = log_config_file_path();
  paths.defaultLog = client_log_file_path();
  if (paths.socket.empty()) {
    fprintf(stderr, "logd: no socket path (no home folder?)\n");
    return 1;
  }
  // Only the standard streams stay: whatever logd inherited, and what the
  // library's mode test leaves open, would take a client's descriptor.
  close_range(3, ~0U, 0);
  // Root's own groups must never open a user's folder for it.
  if (geteuid() == 0) setgroups(0, nullptr);
  RaiseDescriptorLimit();
  logd::ProvideArea(paths.area);
  // System-wide, every user's client programs connect; per user, only the user's.
  const int listener = logd::Listen(paths.socket, paths.systemWide ? 0666 : 0600);
  if (listener < 0) return 1;
  logd::Serve(listener, paths, options, waitMask);
  return 0;
}
