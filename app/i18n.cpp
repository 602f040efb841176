#include "app/i18n.h"

#include <clocale>
#include <string_view>

#include "app/constants.h"

void BindMessageCatalogue(const std::string& installRoot) {
  const std::string translationFolder = installRoot + "/nls";
  setlocale(LC_ALL, "");
  const std::string domain(constants::kTextDomain);
  bindtextdomain(domain.c_str(), translationFolder.c_str());
  bind_textdomain_codeset(domain.c_str(), "UTF-8");
  textdomain(domain.c_str());
}

std::string FormatMessage(const char* translatedFormat, const std::string& value) {
  std::string_view format(translatedFormat);
  std::string text;
  size_t at = format.find("%s");
  if (at == std::string_view::npos) return std::string(format);
  text.append(format.substr(0, at)).append(value).append(format.substr(at + 2));
  return text;
}
