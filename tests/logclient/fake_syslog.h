#pragma once
// This program brings its own system-log functions, so that what the library
// gives the system log is recorded here instead of reaching the machine's log.
#include <string>
#include <vector>

namespace logclient_test {

// "<priority> <text>" per message, in order; writer threads may add at once.
std::vector<std::string>& SystemLogCalls();

}  // namespace logclient_test
