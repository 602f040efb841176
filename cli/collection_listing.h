#pragma once
// --list: what a command would collect, one "path size" line each on standard
// output, found without running anything and without writing any file.
#include "app/app.h"

void PrintExistingLogsList(const App& app);
void PrintIssueLogsList(const App& app);
