#include "install/po_catalogue.h"

#include <sstream>

#include "support/files.h"

namespace installtest {
namespace {

// The text between the outer quotes of one catalogue line, escapes resolved.
std::string UnquoteLine(const std::string& line) {
  const size_t open = line.find('"'), close = line.rfind('"');
  std::string text;
  for (size_t i = open + 1; open != std::string::npos && i < close; ++i) {
    if (line[i] == '\\' && i + 1 < close) {
      const char escaped = line[++i];
      text += escaped == 'n' ? '\n' : escaped == 't' ? '\t' : escaped;
    } else {
      text += line[i];
    }
  }
  return text;
}

}  // namespace

std::vector<CatalogueEntry> ReadCatalogue(const std::filesystem::path& file) {
  std::vector<CatalogueEntry> entries;
  CatalogueEntry current;
  std::string* target = nullptr;  // the field that continuation lines extend
  const auto finish = [&] {
    if (!current.msgid.empty()) entries.push_back(current);
    current = CatalogueEntry{};
    target = nullptr;
  };
  std::istringstream lines(testsupport::ReadFile(file));
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("#,")) {
      finish();
      current.fuzzy = line.find("fuzzy") != std::string::npos;
    } else if (line.starts_with("msgid ")) {
      if (target) finish();
      target = &current.msgid;
    } else if (line.starts_with("msgstr ")) {
      target = &current.msgstr;
    }
    if (target && !line.starts_with("#")) *target += UnquoteLine(line);
  }
  finish();
  return entries;
}

std::map<std::string, std::string> TranslationsOf(const std::filesystem::path& file) {
  std::map<std::string, std::string> translations;
  for (const CatalogueEntry& entry : ReadCatalogue(file))
    if (!entry.fuzzy && !entry.msgstr.empty()) translations[entry.msgid] = entry.msgstr;
  return translations;
}

std::vector<std::string> ListedLanguages(const std::filesystem::path& poFolder) {
  std::vector<std::string> languages;
  std::istringstream lines(testsupport::ReadFile(poFolder / "LINGUAS"));
  for (std::string line; std::getline(lines, line);)
    if (!line.empty() && line[0] != '#') languages.push_back(line);
  return languages;
}

}  // namespace installtest
