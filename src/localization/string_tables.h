#pragma once

#include <span>
#include <string_view>

namespace linewatch {

/// One text of a string table. All tables are compiled into the program.
struct TableText {
  /// For example "en" or "de".
  std::string_view language;
  /// "kestrow", "widget", "feed" or "window".
  std::string_view table;
  std::string_view key;
  /// An ICU MessageFormat pattern, or plain text if it has no arguments.
  std::string_view text;
};

/// All texts of resources/strings. Texts of one language and table are adjacent.
std::span<const TableText> embeddedTexts();

/// The language that has every text.
inline constexpr std::string_view kFallbackLanguage = "en";

}  // namespace linewatch
