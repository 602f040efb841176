#pragma once
// Whether a fetched stream is a whole archive: a transfer cut anywhere, even
// at a block boundary, fails one of the two ends this looks at.
#include <filesystem>

// True when file is one gzip member ending in its trailer (length and CRC
// checked by zlib) with nothing after it, and what it holds is a tar whose
// length is a whole number of 512-byte blocks ending in the two zero blocks
// that close an archive.
bool IsCompleteGzipTar(const std::filesystem::path& file);
