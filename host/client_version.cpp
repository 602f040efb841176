#include "host/client_version.h"

#include <sys/utsname.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <mutex>
// GCC 12 warns falsely inside <regex> when optimising with sanitizers.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#include <regex>
#pragma GCC diagnostic pop
#include <vector>

#include "host/install_root.h"
#include "host/os_identity.h"

namespace {

// A version file's first line is read into 256 bytes, so longer values never
// occur; refusing them also bounds the regex matcher's recursion.
constexpr size_t kMaxVersionLength = 255;

// Callers never release ToWideString buffers; holding them here keeps them
// reachable instead of reported as leaks.
void KeepForProcessLifetime(wchar_t* buffer) {
  static std::mutex* guard = new std::mutex;
  static auto* kept = new std::vector<wchar_t*>;
  std::lock_guard<std::mutex> lock(*guard);
  kept->push_back(buffer);
}

std::wstring ToWideCopy(const char* text) {
  const wchar_t* wide = ToWideString(text);
  return wide != nullptr ? std::wstring(wide) : std::wstring();
}

std::string ReadVersionFileFirstLine() {
  std::ifstream in(FindInstallRoot() + "/pkginf/Ver.core." + PlatformFolderName());
  if (!in) return "";
  char line[256] = {};
  // An overlong first line is cut at 255 characters and used as cut.
  in.getline(line, sizeof(line));
  return line;
}

}  // namespace

std::string ParseVersionLine(const std::string& firstLine) {
  size_t equals = firstLine.find('=');
  if (equals == std::string::npos) return "";
  std::string value = firstLine.substr(equals + 1);
  if (value.size() > kMaxVersionLength) return "";
  static const std::regex kFourNumbers("([0-9]+\\.){3}[0-9]+", std::regex::ECMAScript);
  return std::regex_match(value, kFourNumbers) ? value : "";
}

std::wstring GetClientVersion() {
  std::string version = ParseVersionLine(ReadVersionFileFirstLine());
  return version.empty() ? std::wstring() : ToWideCopy(version.c_str());
}

std::wstring GetKernelRelease() {
  utsname names{};
  if (uname(&names) != 0) return L"";
  return ToWideCopy(names.release);
}

std::wstring GetOsFamilyName() { return L"Linux"; }

wchar_t* ToWideString(const char* text) {
  if (text == nullptr) text = "";
  constexpr size_t kFailed = static_cast<size_t>(-1);
  size_t length = mbstowcs(nullptr, text, 0);
  if (length == kFailed) {
    std::fputs("error", stdout);
    length = 0;  // the conversion below then has no room: an empty text, not an overrun
  }
  auto* wide = static_cast<wchar_t*>(std::calloc(length + 1, sizeof(wchar_t)));
  if (wide == nullptr) {
    std::fputs("error", stdout);
    return nullptr;
  }
  KeepForProcessLifetime(wide);
  // At most length characters: the zero fill is the terminator.
  if (mbstowcs(wide, text, length) == kFailed) std::fputs("error", stdout);
  return wide;
}

std::string ToNarrowString(const wchar_t* text) {
  if (text == nullptr) return "";
  std::string narrow;
  for (; *text != L'\0'; ++text) narrow += static_cast<char>(*text & 0xFF);
  return narrow;
}

std::string ToNarrowString(const std::wstring& text) { return ToNarrowString(text.c_str()); }

std::string BuildClientIdentity() {
  std::wstring identity = L"NorvexBeacon";
  std::wstring version = GetClientVersion();
  if (!version.empty()) identity += L"/" + version;
  identity += L" " + GetOsFamilyName();
  std::wstring release = GetKernelRelease();
  if (!release.empty()) identity += L"/" + release;
  identity += L" ";
  std::string os = GetOsIdentification(&kDefaultOsQueryLimits);
  if (!os.empty()) identity += ToWideCopy(os.c_str()) + L" ";
  identity += L"Q7Class NDCCapable";
  return ToNarrowString(identity);
}

std::string BuildProductToken(const std::string& name) {
  std::string version = ToNarrowString(GetClientVersion());
  std::string separator = version.empty() ? "" : "/";
  return (name.empty() ? "NDC" : name) + separator + version;
}
