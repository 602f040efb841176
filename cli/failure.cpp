#include "cli/failure.h"

#include <iostream>

void ReportFailure(const std::string& line) { std::cerr << "logmgr-cli: " << line << std::endl; }

void ReportStatus(const std::string& line) { std::cerr << line << std::endl; }
