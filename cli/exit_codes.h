#pragma once
// Exit codes of logmgr-cli, as --help and the manual page list them.
namespace exitcode {

inline constexpr int kWritten = 0;         // archive written
inline constexpr int kNothing = 1;         // nothing to archive
inline constexpr int kSomeHostsFailed = 1; // hosts: one or more hosts failed
inline constexpr int kArchiveFailed = 2;   // the archive could not be made or written
inline constexpr int kRefused = 3;         // refused: overwrite not confirmed
inline constexpr int kOtherInstance = 4;   // the window or another logmgr-cli runs
inline constexpr int kUsage = 64;          // usage error

}  // namespace exitcode
