#pragma once
// What the client's environment dump tool prints: the path of the dump file
// it wrote, sometimes wrapped over several lines or ended with CRLF.
#include <string>
#include <string_view>

// The dump file path: the printed text with every carriage return and line
// feed removed, nothing else changed.
std::string DumpPathFromEnvdumpOutput(std::string_view printed);
