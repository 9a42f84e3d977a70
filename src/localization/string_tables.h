#pragma once

#include <span>
#include <string_view>
#include <vector>

namespace linewatch {

/// One text of a string table. All tables are compiled into the program.
struct TableText {
  /// For example "en" or "pt-PT".
  std::string_view language;
  /// "failure", "feed", "kestrow", "status", "terminal", "widget" or "window".
  std::string_view table;
  std::string_view key;
  /// An ICU MessageFormat pattern, or plain text if it has no arguments.
  std::string_view text;
};

/// The texts of one language as they are compiled in: three lines per text (table, key, text), sorted by
/// table and key.
struct EmbeddedLanguage {
  std::string_view language;
  std::string_view lines;
};

/// All languages of resources/strings, sorted.
std::span<const EmbeddedLanguage> embeddedLanguages();

/// The texts of the languages, sorted by language, table and key. A language without texts adds none.
std::vector<TableText> embeddedTexts(std::span<const std::string_view> languages);

/// The language that has every text.
inline constexpr std::string_view kFallbackLanguage = "en";

}  // namespace linewatch
