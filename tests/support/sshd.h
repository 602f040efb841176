#pragma once
// Real sshd servers on 127.0.0.1 and an ssh config naming them by alias (for
// ssh -F), keys and known hosts in a scratch folder, never the real ~/.ssh.
// Each server's sessions get their own PATH, HOME, ... through SetEnv.
#include <netinet/in.h>
#include <pwd.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "support/fixtures.h"
#include "support/processes.h"

namespace testsupport {

// A port nothing listened on a moment ago.
inline int FreeLoopbackPort() {
  const int fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
  socklen_t length = sizeof address;
  bind(fd, reinterpret_cast<sockaddr*>(&address), length);
  getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
  close(fd);
  return ntohs(address.sin_port);
}

class SshdHosts {
 public:
  SshdHosts() {
    for (const char* key : {"host_key", "user_key", "stranger_key"})  // the stranger's is never authorized
      RunAndCapture("ssh-keygen -q -t ed25519 -N '' -f " + (dir_ / key).string());
    std::filesystem::copy_file(dir_ / "user_key.pub", dir_ / "authorized_keys");
    // sshd refuses to start without its privilege separation folder, which a
    // fresh container or CI machine may lack; it is made only when missing.
    // (Only sshd run as root looks for it; a user's sshd needs none.)
    std::error_code notRoot;
    if (!std::filesystem::exists("/run/sshd")) std::filesystem::create_directories("/run/sshd", notRoot);
  }
  ~SshdHosts() {
    for (pid_t server : servers_) kill(server, SIGTERM), waitpid(server, nullptr, 0);
  }
  SshdHosts(const SshdHosts&) = delete;

  // Starts an sshd whose sessions get environment (e.g. {"PATH=/x:/usr/bin",
  // "HOME=/y"}) and names it alias; its port, or -1 when it did not come up.
  int Start(const std::string& alias, const std::vector<std::string>& environment) {
    const int port = FreeLoopbackPort();
    const std::string config = (dir_ / ("sshd_config." + alias)).string(), log = config + ".log";
    std::string text = "Port " + std::to_string(port) + "\nListenAddress 127.0.0.1\nHostKey " + dir_.str() +
                       "/host_key\nAuthorizedKeysFile " + dir_.str() + "/authorized_keys\nPidFile none\nUsePAM no\n"
                       "StrictModes no\nPermitRootLogin prohibit-password\nPasswordAuthentication no\n"
                       "KbdInteractiveAuthentication no\nLogLevel INFO\nSetEnv";
    for (const std::string& variable : environment) text += " \"" + variable + "\"";
    WriteFile(config, text + "\n");
    servers_.push_back(StartProgram({"/usr/sbin/sshd", "-D", "-e", "-f", config}, log.c_str()));
    if (!WaitUntil([&] { return ReadFile(log).find("Server listening") != std::string::npos; }, 10)) return -1;
    AddAlias(alias, port);
    return port;
  }

  // An alias for port; key is "user_key" (authorized) or "stranger_key".
  void AddAlias(const std::string& alias, int port, const std::string& key = "user_key") {
    std::ofstream(config(), std::ios::app)
        << "Host " << alias << "\n  HostName 127.0.0.1\n  Port " << port << "\n  User " << getpwuid(getuid())->pw_name
        << "\n  IdentityFile " << (dir_ / key).string() << "\n  IdentitiesOnly yes\n  IdentityAgent none\n"
        << "  UserKnownHostsFile " << (dir_ / "known_hosts").string() << "\n  GlobalKnownHostsFile /dev/null\n"
        << "  StrictHostKeyChecking no\n  LogLevel ERROR\n  ConnectTimeout 5\n";
  }

  // The ssh config file with every alias, for --ssh-config.
  std::filesystem::path config() const { return dir_ / "ssh_config"; }

 private:
  TempDir dir_{"sshd-hosts"};
  std::vector<pid_t> servers_;
};

}  // namespace testsupport
