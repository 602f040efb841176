#pragma once
// The utility's fixed names, in the order the client's tools document them.
// Folder constants begin with "/" and are appended to a root or home folder
// by plain concatenation; file names are joined with the path rule.
#include <string_view>

namespace constants {

inline constexpr std::string_view kProgramShortName = "logmgr";
inline constexpr std::string_view kGladeFile = "/gtk/glade/logging.glade";
inline constexpr std::string_view kCssFile = "/gtk/logging.css";
inline constexpr std::string_view kSpinnerFile = "/icons/logging_spinner.gif";
inline constexpr std::string_view kIconFile = "/icons/000_Beacon_64.png";
inline constexpr std::string_view kSystemLogFolder = "/var/log/norvex/";
inline constexpr std::string_view kLogsFolder = "/.ORBClient/logs/";
inline constexpr std::string_view kIssueFolder = "/.ORBClient/logs/issuereproduce/";
inline constexpr std::string_view kKeywardConfigName = "KeywardConfig.xml";
inline constexpr std::string_view kKeywardLogName = "KeywardSvr.latest";
inline constexpr std::string_view kKeywardConfigSource = "/config/KeywardConfig.xml";
inline constexpr std::string_view kClientLogName = "ORBClient.log";
inline constexpr std::string_view kActivityLogPattern = "userActivitylog*";
inline constexpr std::string_view kKvlogPattern = "kvlog*";
inline constexpr std::string_view kKvlogLatest = "kvlog.latest";
inline constexpr std::string_view kKvlogMarker = "/.ORBClient/.kvlogEnabled";
inline constexpr std::string_view kActivityLogLatest = "userActivitylog.latest";
inline constexpr std::string_view kSystemInfoName = "UserSystemInfo.txt";
inline constexpr std::string_view kDesklineCheckName = "DesklineCheck.txt";
inline constexpr std::string_view kIssueArchiveName = "NorvexDeskline-IssueLogs.tar.gz";
inline constexpr std::string_view kExistingArchiveName = "NorvexDeskline-ExistingLogs.tar.gz";
inline constexpr std::string_view kEnvdumpName = "Envdump.txt";
inline constexpr std::string_view kEnvdumpTool = "/util/envdump";
inline constexpr std::string_view kDesklineCheckTool = "/util/desklinecheck.sh";
inline constexpr std::string_view kTempListName = "temp_file_name.txt";

// Text domain of every translated message.
inline constexpr std::string_view kTextDomain = "appshelf";

}  // namespace constants
