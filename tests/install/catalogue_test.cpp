// The catalogues against the template and the template against the code.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "install/po_catalogue.h"
#include "support/files.h"
#include "support/temp_dir.h"

namespace installtest {
namespace {

const std::filesystem::path kPoFolder = std::filesystem::path(NORVEX_SOURCE_DIR) / "po";

size_t CountOf(const std::string& text, const std::string& piece) {
  size_t count = 0;
  for (size_t at = text.find(piece); at != std::string::npos; at = text.find(piece, at + piece.size())) ++count;
  return count;
}

// Translations quote with their language's own marks („…“, « … »), one for each straight quote of the source.
size_t QuoteMarksOf(const std::string& text) {
  size_t count = 0;
  for (const char* mark : {"\"", "„", "“", "”", "«", "»"}) count += CountOf(text, mark);
  return count;
}

std::set<std::string> MsgidsOf(const std::filesystem::path& file) {
  std::set<std::string> ids;
  for (const CatalogueEntry& entry : ReadCatalogue(file)) ids.insert(entry.msgid);
  return ids;
}

TEST(Catalogues, EveryTranslationKeepsThePlaceholderQuotesAndLineBreaksOfItsSource) {
  for (const std::string& lang : ListedLanguages(kPoFolder)) {
    const auto entries = ReadCatalogue(kPoFolder / (lang + ".po"));
    ASSERT_FALSE(entries.empty()) << lang;
    for (const CatalogueEntry& entry : entries) {
      SCOPED_TRACE(lang + ": " + entry.msgid);
      EXPECT_EQ(CountOf(entry.msgstr, "%s"), CountOf(entry.msgid, "%s"));
      EXPECT_EQ(CountOf(entry.msgstr, "%"), CountOf(entry.msgid, "%"));
      EXPECT_EQ(QuoteMarksOf(entry.msgstr), CountOf(entry.msgid, "\""));
      EXPECT_EQ(CountOf(entry.msgstr, "\""), 0u);
      EXPECT_EQ(CountOf(entry.msgstr, "\n"), CountOf(entry.msgid, "\n"));
      // "Last saved log: " is followed by another blank and the time stamp.
      EXPECT_TRUE(!entry.msgid.ends_with(' ') || entry.msgstr.ends_with(' '));
    }
  }
}

TEST(Catalogues, EveryTemplateTextIsTranslatedInEveryListedLanguage) {
  const auto ids = MsgidsOf(kPoFolder / "appshelf.pot");
  ASSERT_FALSE(ids.empty());
  for (const std::string& lang : ListedLanguages(kPoFolder)) {
    const auto translations = TranslationsOf(kPoFolder / (lang + ".po"));
    for (const std::string& id : ids) EXPECT_TRUE(translations.count(id)) << lang << " lacks: " << id;
  }
}

TEST(Catalogues, TemplateHoldsExactlyTheTextsOfTheCurrentSources) {
  testsupport::TempDir scratch;
  const auto fresh = scratch / "fresh.pot";
  const std::string command = std::string(NORVEX_CMAKE_COMMAND) + " -DSOURCE_DIR=" + NORVEX_SOURCE_DIR +
                              " -DOUTPUT=" + fresh.string() + " -DXGETTEXT=" + NORVEX_XGETTEXT +
                              " -P " + (kPoFolder / "extract.cmake").string() + " 2>&1";
  const std::string output = testsupport::RunAndCapture(command);
  ASSERT_TRUE(std::filesystem::exists(fresh)) << output;
  const auto extracted = MsgidsOf(fresh);
  const auto committed = MsgidsOf(kPoFolder / "appshelf.pot");
  // The texts the user sees first must be among them, or extraction missed a source.
  for (const char* id : {"Norvex Log Collection Utility", "Start collecting logs", "Collect existing logs", "Save File"})
    EXPECT_TRUE(extracted.count(id)) << id;
  std::vector<std::string> missing, stale;
  std::set_difference(extracted.begin(), extracted.end(), committed.begin(), committed.end(),
                      std::back_inserter(missing));
  std::set_difference(committed.begin(), committed.end(), extracted.begin(), extracted.end(),
                      std::back_inserter(stale));
  EXPECT_TRUE(missing.empty()) << "run the pot target; new text: " << missing.front();
  EXPECT_TRUE(stale.empty()) << "run the pot target; gone text: " << stale.front();
}

}  // namespace
}  // namespace installtest
