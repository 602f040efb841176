#include "cli/host_fanout.h"

#include <poll.h>
#include <signal.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <deque>
#include <initializer_list>
#include <memory>

#include "app/i18n.h"
#include "cli/host_transfer.h"

namespace {

constexpr int kTickMilliseconds = 200;

// The stop signals arrive as a readable descriptor in the same poll() as the
// pipes, for as long as the fan-out runs; the old mask is put back after.
class StopSignalFd {
 public:
  StopSignalFd() {
    sigset_t set;
    sigemptyset(&set);
    for (int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&set, signal);
    sigprocmask(SIG_BLOCK, &set, &old_);
    fd_ = signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
  }
  ~StopSignalFd() {
    if (fd_ >= 0) close(fd_);
    sigprocmask(SIG_SETMASK, &old_, nullptr);
  }
  StopSignalFd(const StopSignalFd&) = delete;
  StopSignalFd& operator=(const StopSignalFd&) = delete;

  int fd() const { return fd_; }
  bool Caught() const {
    signalfd_siginfo info{};
    return fd_ >= 0 && read(fd_, &info, sizeof info) == static_cast<ssize_t>(sizeof info);
  }

 private:
  sigset_t old_{};
  int fd_ = -1;
};

struct Run {
  const FanOutOptions& options;
  std::vector<HostResult> results;
  std::deque<size_t> waiting;
  std::vector<std::pair<size_t, std::unique_ptr<HostTransfer>>> running;
  int done = 0;

  FanOutCounts Counts() const { return {done, static_cast<int>(running.size()), static_cast<int>(waiting.size())}; }

  void Record(size_t index, const HostTransfer& transfer) {
    results[index] = {transfer.host(), transfer.ok(), transfer.result(), transfer.ok() ? transfer.size() : 0,
                      transfer.seconds()};
    ++done;
  }

  void StartWaiting() {
    while (!waiting.empty() && static_cast<int>(running.size()) < options.jobs) {
      const size_t index = waiting.front();
      waiting.pop_front();
      auto transfer = std::make_unique<HostTransfer>(options.hosts[index], options.folder);
      if (transfer->Start(SshCommand(options, options.hosts[index])))
        running.emplace_back(index, std::move(transfer));
      else
        Record(index, *transfer);
    }
  }

  // Reads what came, ends the ones past the time limit, finishes the ended.
  void Step() {
    const auto now = HostTransfer::Clock::now();
    for (auto it = running.begin(); it != running.end();) {
      HostTransfer& transfer = *it->second;
      transfer.Drain();
      if (options.timeoutSeconds > 0 && now - transfer.started() > std::chrono::seconds(options.timeoutSeconds))
        transfer.Kill(true);
      if (!transfer.Ended()) {
        ++it;
        continue;
      }
      transfer.Finish();
      Record(it->first, transfer);
      it = running.erase(it);
    }
  }

  void Wait(const StopSignalFd& stop) {
    std::vector<pollfd> fds{{stop.fd(), POLLIN, 0}};
    for (const auto& [index, transfer] : running)
      for (int fd : {transfer->outFd(), transfer->errFd()})
        if (fd >= 0) fds.push_back({fd, POLLIN, 0});
    poll(fds.data(), fds.size(), kTickMilliseconds);
  }

  void StopAll() {
    for (auto& [index, transfer] : running) {
      transfer->Abandon();
      results[index] = {transfer->host(), false, _("stopped"), 0, 0};
    }
    running.clear();
    for (size_t index : waiting) results[index] = {options.hosts[index], false, _("stopped"), 0, 0};
    waiting.clear();
  }
};

}  // namespace

std::vector<std::string> SshCommand(const FanOutOptions& options, const std::string& host) {
  std::vector<std::string> argv{"ssh", "-o", "BatchMode=yes"};
  if (!options.sshConfig.empty()) argv.insert(argv.end(), {"-F", options.sshConfig});
  for (const std::string& option : options.sshOptions) argv.insert(argv.end(), {"-o", option});
  // "--": whatever the host is called, ssh reads no option from it.
  argv.insert(argv.end(), {"--", host, "logmgr-cli", "existing", "-o", "-"});
  if (options.mask) argv.push_back("--mask");
  return argv;
}

std::vector<HostResult> FetchFromHosts(const FanOutOptions& options,
                                       const std::function<void(const FanOutCounts&)>& progress, bool& stopped) {
  Run run{options, std::vector<HostResult>(options.hosts.size()), {}, {}, 0};
  for (size_t index = 0; index < options.hosts.size(); ++index) run.waiting.push_back(index);
  StopSignalFd stop;
  stopped = false;
  while (!run.waiting.empty() || !run.running.empty()) {
    run.StartWaiting();
    progress(run.Counts());
    run.Wait(stop);
    if ((stopped = stop.Caught())) {
      run.StopAll();
      break;
    }
    run.Step();
  }
  progress(run.Counts());
  return run.results;
}
