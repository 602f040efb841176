#pragma once
// One line on standard error per failure, named after the program.
#include <string>

void ReportFailure(const std::string& line);
// A progress or status line for the person at the terminal, on standard error.
void ReportStatus(const std::string& line);
