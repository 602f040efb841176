#pragma once
// Local time as text, and such text back to seconds since the epoch.
#include <cstdint>
#include <string>

std::string FormatLocalTime(const char* format);
std::string GetTimestampForFileName();
int64_t ParseLocalTime(const std::string& text, const char* format);
