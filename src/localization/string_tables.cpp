#include "localization/string_tables.h"

#include <algorithm>

namespace linewatch {

namespace {

std::string_view takeLine(std::string_view& lines) {
  const std::string_view line = lines.substr(0, lines.find('\n'));
  lines.remove_prefix(line.size() + 1);
  return line;
}

void append(const EmbeddedLanguage& language, std::vector<TableText>& texts) {
  for (std::string_view lines = language.lines; !lines.empty();) {
    TableText& text = texts.emplace_back();
    text.language = language.language;
    text.table = takeLine(lines);
    text.key = takeLine(lines);
    text.text = takeLine(lines);
  }
}

}  // namespace

std::vector<TableText> embeddedTexts(std::span<const std::string_view> languages) {
  std::vector<TableText> texts;
  for (const EmbeddedLanguage& language : embeddedLanguages()) {
    if (std::ranges::find(languages, language.language) != languages.end()) append(language, texts);
  }
  return texts;
}

}  // namespace linewatch
