#pragma once
// This program brings its own openlog, syslog, ... so that the library's
// system-log calls are recorded here instead of reaching the machine's log.
#include <string>
#include <vector>

namespace logclient_test {

// In order: "openlog <ident> <option> <facility>", "setlogmask <mask>",
// "syslog <priority> <text>", "closelog".
std::vector<std::string>& SystemLogCalls();

}  // namespace logclient_test
