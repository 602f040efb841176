#pragma once
// This test program brings its own openlog, syslog, ... so that the library's
// system-log calls are recorded here instead of reaching the machine's log
// (or, with no log daemon, the console).
#include <string>
#include <vector>

namespace logclient_test {

// One line per call, in order: "openlog <ident> <option> <facility>",
// "setlogmask <mask>", "syslog <priority> <text>", "closelog".
std::vector<std::string>& SystemLogCalls();

}  // namespace logclient_test
