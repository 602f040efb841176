// Names of the log levels and classes, and the class tree.
#include "logclient/class_table.h"

#include "logclient/logclient.h"

namespace logclient {

const LevelRow kLogLevelTable[kLevelCount] = {
    {"INHERIT", "Inherited"},  {"VERBOSE", "Verbose"},
    {"INFO", "Information"},   {"WARNING", "Warnings"},
    {"ERROR", "Errors"},       {"FATAL", "Fatal Errors"},
    {"AOL", "Always On Logging"}, {"NONE", "Disabled"},
};

// The parent column is shared with logd and the client's other programs,
// which resolve levels through the same tree; only the names are ours.
const ClassRow kLogClassTable[kClassCount] = {
    {"ALL", "All", -1},
    {"LOG_ASSERT", "Assertions", 0},
    {"LOG_VC_AUDIO", "Audio Channel", 43},
    {"LOG_CONFIG", "Configuration", 0},
    {"LOG_UI_DISPLAY", "Session Display", 34},
    {"LOG_CONNECT", "Connection Setup", 0},
    {"LOG_UI_INPUT", "Session Input", 34},
    {"LOG_PROTOCOL", "Remote Protocol", 0},
    {"LOG_VC_DRIVES", "Drive Mapping", 43},
    {"LOG_VC_USB", "USB Redirection", 43},
    {"LOG_UI_KEYBOARD", "Keyboard", 34},
    {"LOG_UI_MOUSE", "Mouse and Touch", 34},
    {"LOG_VC_PRINT_SPOOL", "Print Spooling", 22},
    {"LOG_LAUNCH", "Session Launch", 0},
    {"LOG_NET", "Network Transport", 0},
    {"LOG_PROXY", "Proxy Support", 0},
    {"LOG_NET_TCP", "TCP Transport", 14},
    {"LOG_UI_MONITORS", "Multiple Monitors", 34},
    {"LOG_UI_SCALING", "Display Scaling", 34},
    {"LOG_NET_UDP", "UDP Transport", 14},
    {"LOG_UI_CURSOR", "Cursor", 34},
    {"LOG_RECONNECT", "Session Reliability", 0},
    {"LOG_VC_PRINT", "Printing", 43},
    {"LOG_BROKER", "Connection Broker", 0},
    {"LOG_WEB_PORTAL", "Web Portal", 0},
    {"LOG_VC_CLIPBOARD", "Clipboard", 43},
    {"LOG_LICENSING", "Licensing", 0},
    {"LOG_UI_SEAMLESS", "Seamless Windows", 34},
    {"LOG_TLS", "TLS Security", 0},
    {"LOG_TLS_CERT", "Certificate Checks", 28},
    {"LOG_COMPRESS", "Compression", 0},
    {"LOG_VC_SMARTCARD", "Smart Card", 43},
    {"LOG_VC_SERIAL", "Serial Ports", 43},
    {"LOG_UI_TOOLBAR", "Session Toolbar", 34},
    {"LOG_UI", "Session Window", 0},
    {"LOG_IPC", "Process Messages", 0},
    {"LOG_VC_SCANNER", "Scanner Redirection", 43},
    {"LOG_AUTH_KERBEROS", "Kerberos Logon", 41},
    {"LOG_AUTH_SSO", "Single Sign-On", 41},
    {"LOG_MEMORY", "Memory Use", 0},
    {"LOG_UI_GRAPHICS", "Graphics Rendering", 34},
    {"LOG_AUTH", "Authentication", 0},
    {"LOG_VC_MULTITOUCH", "Multi-touch Channel", 43},
    {"LOG_VC", "Virtual Channels", 0},
    {"LOG_VC_FILE_XFER", "File Transfer", 43},
    {"LOG_VC_URL_REDIRECT", "URL Redirection", 43},
    {"LOG_UPDATE", "Client Updates", 0},
    {"LOG_UI_IME", "Input Methods", 34},
    {"LOG_MEDIA", "Multimedia", 0},
    {"LOG_MEDIA_VIDEO", "Video Playback", 48},
    {"LOG_MEDIA_WEBCAM", "Webcam Redirection", 48},
    {"LOG_MEDIA_WEBRTC", "Real-time Media", 48},
    {"LOG_MEDIA_BROWSER", "Browser Content", 48},
    {"LOG_MEDIA_DECODER", "Media Decoding", 48},
    {"LOG_MEDIA_RENDER", "Media Rendering", 48},
    {"LOG_MEDIA_AUDIO_IN", "Microphone Input", 48},
    {"LOG_SELF_SERVICE", "Self-Service App", 0},
    {"LOG_TELEMETRY", "Usage Telemetry", 0},
    {"LOG_KEYRING", "Credential Store", 0},
    {"LOG_DAEMON", "Log Daemon", 0},
};

}  // namespace logclient

namespace logclient {
namespace {

// Table rows are reachable only while an area is mapped, like every other
// query of the configuration.
const ClassRow* ClassRowOf(int logClass) {
  if (g_area == nullptr || static_cast<unsigned>(logClass) >= kClassCount) return nullptr;
  return &kLogClassTable[logClass];
}

const LevelRow* LevelRowOf(int level) {
  if (g_area == nullptr || static_cast<unsigned>(level) >= kLevelCount) return nullptr;
  return &kLogLevelTable[level];
}

}  // namespace
}  // namespace logclient

using logclient::ClassRowOf;
using logclient::LevelRowOf;

extern "C" {

int log_get_class_parent(int log_class) {
  const logclient::ClassRow* row = ClassRowOf(log_class);
  return row != nullptr ? row->parent : -1;
}

const char* log_get_class_name(int log_class) {
  const logclient::ClassRow* row = ClassRowOf(log_class);
  return row != nullptr ? row->name : nullptr;
}

const char* log_get_class_display_name(int log_class) {
  const logclient::ClassRow* row = ClassRowOf(log_class);
  return row != nullptr ? row->displayName : nullptr;
}

const char* log_get_level_name(int level) {
  const logclient::LevelRow* row = LevelRowOf(level);
  return row != nullptr ? row->name : nullptr;
}

const char* log_get_level_display_name(int level) {
  const logclient::LevelRow* row = LevelRowOf(level);
  return row != nullptr ? row->displayName : nullptr;
}

}  // extern "C"
