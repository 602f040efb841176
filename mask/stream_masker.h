#pragma once
// Copies one file to another with every value replaced by its stand-in,
// a piece at a time: memory stays at one buffer whatever the file's size.
#include <filesystem>
#include <functional>
#include <string>

#include "mask/value_patterns.h"

class ValueScanner;

// The stand-in of a value found.
using StandInOf = std::function<std::string(ValueKind, const std::string&)>;

enum class MaskResult { kMasked, kBinary, kFailed };

// Pieces end after the last line end in the buffer. A line longer than the
// buffer (1 MiB) is cut after its last blank in it, or hard at 1 MiB when it
// has none: a value split by that hard cut is the one thing missed.
inline constexpr size_t kMaskBufferBytes = 1u << 20;

// kBinary as soon as a piece does not look like text; out is then incomplete
// and the caller drops it.
MaskResult MaskFile(const std::filesystem::path& in, const std::filesystem::path& out, ValueScanner& scanner,
                    const StandInOf& standInOf);
