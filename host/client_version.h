#pragma once
// Installed client version, kernel release and the identity strings built from them.
#include <string>

std::wstring GetClientVersion();
std::wstring GetKernelRelease();
std::wstring GetOsFamilyName();
// Newly allocated and zero-filled, null only when memory runs out; the
// caller owns it. Writes "error" to stdout once per failed step.
wchar_t* ToWideString(const char* text);
std::string ToNarrowString(const wchar_t* text);
std::string ToNarrowString(const std::wstring& text);
std::string BuildClientIdentity();
std::string BuildProductToken(const std::string& name);

// The version text of a version file's first line ("KEY=1.2.3.4" -> "1.2.3.4"), or "".
std::string ParseVersionLine(const std::string& firstLine);
