// The client's shared log levels, raised for a run and put back after it.
#include "app/app.h"
#include "logclient/logclient.h"

void App::RaiseAllLogLevels() {
  // Without a configuration area every call below fails quietly and the run goes on.
  log_client_init();
  // Only class 0's stored level is kept; stop gives it to every class.
  savedLogLevel = log_get_class_level(0);
  SetAllLogLevels(LOG_LEVEL_VERBOSE);
  log_set_shared_path(issueClientLog.c_str());
}

void App::SetAllLogLevels(int level) {
  for (int logClass = 0; logClass < LOG_CLASS_COUNT; ++logClass) log_set_class_level(logClass, level);
}
