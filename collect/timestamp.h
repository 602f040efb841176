#pragma once
// Time text of the "Last saved log: " line, split from the clock for testing.
#include <ctime>
#include <string>

// "%A, %B %d, %Y, %I:%M:%S %Z (%z)" through std::time_put in the stream's locale.
std::string FormatTimestamp(const std::tm& when);
