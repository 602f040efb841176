// logd: the log daemon of the client family. Listens on the socket the
// logging library names, takes records from any number of client programs
// and appends each as one line to the log file named in the shared
// configuration area, following that name when it changes. Stops on SIGTERM
// or SIGINT and removes its socket.
//
// Standard output gets one line per client hello; standard error reports
// dropped clients and file trouble.
#include <cstdio>
#include <string>

#include "logclient/logclient.h"
#include "logd/server.h"

int main(int argc, char**) {
  if (argc != 1) {
    fprintf(stderr, "usage: logd\n(it finds its socket and log file as every client program does)\n");
    return 2;
  }
  sigset_t waitMask = logd::BlockStopSignals();
  // Without the area logd still serves, with the default settings and file.
  if (!log_config_open())
    fprintf(stderr, "logd: no log configuration area at \"%s\", using the defaults\n", log_config_file_path());
  const std::string socketPath = log_socket_path();
  if (socketPath.empty()) {
    fprintf(stderr, "logd: no socket path (no home folder?)\n");
    return 1;
  }
  int listener = logd::Listen(socketPath);
  if (listener < 0) return 1;
  logd::Serve(listener, socketPath, waitMask);
  return 0;
}
