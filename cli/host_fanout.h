#pragma once
// The fan-out of "hosts": "logmgr-cli existing -o -" on every host through
// OpenSSH, a bounded number at a time, each archive saved as DIR/HOST.tar.gz.
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

struct FanOutOptions {
  std::vector<std::string> hosts;
  std::filesystem::path folder = ".";
  int jobs = 8;
  int timeoutSeconds = 0;  // 0: no limit
  bool mask = false;
  std::string sshConfig;                // -F FILE when not empty
  std::vector<std::string> sshOptions;  // -o OPT each
};

struct HostResult {
  std::string host;
  bool ok = false;
  std::string result;  // "ok" or the reason, in a few words
  unsigned long long size = 0;
  double seconds = 0;
};

struct FanOutCounts {
  int done = 0, running = 0, waiting = 0;
};

// The ssh command line for host, as an argument vector for exec.
std::vector<std::string> SshCommand(const FanOutOptions& options, const std::string& host);

// Fetches from every host; one host's failure never stops the others.
// progress is called on every change and a few times a second. SIGINT,
// SIGTERM and SIGHUP end every ssh child and remove their partial files; the
// hosts not finished then are reported as stopped, and stopped is set.
std::vector<HostResult> FetchFromHosts(const FanOutOptions& options,
                                       const std::function<void(const FanOutCounts&)>& progress, bool& stopped);
