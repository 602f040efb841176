#include "install/po_catalogue.h"

#include <sstream>

#include "support/files.h"

namespace installtest {
namespace {

// The text between the outer quotes of one catalogue line, escapes resolved.
std::string UnquoteLine(const std::string& line) {
  size_t open = line.find('"');
  size_t close = line.rfind('"');
  std::string text;
  if (open == std::string::npos || close <= open) return text;
  for (size_t i = open + 1; i < close; ++i) {
    if (line[i] != '\\' || i + 1 >= close) {
      text += line[i];
      continue;
    }
    char escaped = line[++i];
    text += escaped == 'n' ? '\n' : escaped == 't' ? '\t' : escaped;
  }
  return text;
}

struct Reader {
  std::vector<CatalogueEntry> entries;
  CatalogueEntry current;
  std::string* target = nullptr;  // the field that continuation lines extend
  bool started = false;

  void Finish() {
    if (started && !current.msgid.empty()) entries.push_back(current);
    current = CatalogueEntry{};
    target = nullptr;
    started = false;
  }

  void Take(const std::string& line) {
    if (line.rfind("#,", 0) == 0) {
      if (started) Finish();
      current.fuzzy = line.find("fuzzy") != std::string::npos;
    } else if (line.rfind("msgid ", 0) == 0) {
      if (started) Finish();
      started = true;
      target = &current.msgid;
    } else if (line.rfind("msgstr ", 0) == 0 || line.rfind("msgstr[0] ", 0) == 0) {
      target = &current.msgstr;
    } else if (line.rfind("msgid_plural ", 0) == 0 || line.rfind("msgstr[", 0) == 0 ||
               line.rfind("msgctxt ", 0) == 0) {
      target = nullptr;  // not used by this program's catalogues
      return;
    } else if (line.empty() || line[0] == '#') {
      return;
    }
    if (target && line.find('"') != std::string::npos) *target += UnquoteLine(line);
  }
};

}  // namespace

std::vector<CatalogueEntry> ParseCatalogue(const std::string& text) {
  Reader reader;
  std::istringstream lines(text);
  std::string line;
  while (std::getline(lines, line)) reader.Take(line);
  reader.Finish();
  return reader.entries;
}

std::vector<CatalogueEntry> ReadCatalogue(const std::filesystem::path& file) {
  return ParseCatalogue(testsupport::ReadFile(file));
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
  std::string line;
  while (std::getline(lines, line))
    if (!line.empty() && line[0] != '#') languages.push_back(line);
  return languages;
}

}  // namespace installtest
