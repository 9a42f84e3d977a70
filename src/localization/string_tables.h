#pragma once

#include <span>
#include <string_view>

namespace linewatch {

/// A text of a string table. All of them lie in the program itself.
struct TableText {
  /// "en", "de" …
  std::string_view language;
  /// "kestrow", "widget", "feed" or "window".
  std::string_view table;
  std::string_view key;
  /// An ICU MessageFormat pattern where the text takes arguments; else shown as it is.
  std::string_view text;
};

/// The texts of resources/strings, those of one language and table together.
std::span<const TableText> embeddedTexts();

/// The language whose tables hold every text.
inline constexpr std::string_view kFallbackLanguage = "en";

}  // namespace linewatch
