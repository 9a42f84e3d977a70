#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace linewatch {

/// The string table that holds a text: the companion application's shared one, or the widget's own. A key is
/// in one table only.
enum class StringTable { kestrow, widget };

/// The fallback of every look-up: shown when the table does not hold the key.
inline constexpr std::string_view kLocalizedStringNotFound = "localized string not found";

/// An argument of a format: a count, shown as an unsigned integer in the user's locale, or a text.
using FormatArgument = std::variant<std::uint64_t, std::string>;

/// Texts in the user's language. Main thread; does not fail.
class Localization {
 public:
  virtual ~Localization() = default;

  /// The text of the key, or `fallback` when the table does not hold it.
  virtual std::string localizedString(std::string_view key, std::string_view fallback, StringTable table) = 0;
  /// The format with the arguments filled in and the plural forms of the locale. A text that is not a valid
  /// format is returned unchanged.
  virtual std::string format(const std::string& formatText, std::span<const FormatArgument> arguments) = 0;
  /// The texts joined with the locale's list delimiter: "A, B". Empty for no texts.
  virtual std::string joinCommaDelimited(std::span<const std::string_view> texts) = 0;
};

}  // namespace linewatch
