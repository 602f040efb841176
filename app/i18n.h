#pragma once
// Every user-visible text is looked up in the "appshelf" catalogue when shown.
#include <libintl.h>

#include <string>

inline const char* _(const char* text) { return gettext(text); }

// Takes the user's locale and reads the "appshelf" catalogue from the
// install root's "nls" folder, as UTF-8.
void BindMessageCatalogue(const std::string& installRoot);

// A translated message with its one "%s" replaced by value.
std::string FormatMessage(const char* translatedFormat, const std::string& value);
