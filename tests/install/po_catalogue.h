#pragma once
// Reads gettext catalogues (.po/.pot) well enough to compare entries; this
// program's catalogues have no plural forms or contexts.
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace installtest {

struct CatalogueEntry {
  std::string msgid;   // unescaped
  std::string msgstr;  // unescaped
  bool fuzzy = false;
};

// Entries in file order, without the header (empty msgid) and obsolete "#~" entries.
std::vector<CatalogueEntry> ReadCatalogue(const std::filesystem::path& file);
// msgid -> msgstr of the translated, non-fuzzy entries.
std::map<std::string, std::string> TranslationsOf(const std::filesystem::path& file);
// The languages listed in po/LINGUAS.
std::vector<std::string> ListedLanguages(const std::filesystem::path& poFolder);

}  // namespace installtest
