#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace linewatch {

/// Which table a text is looked up in: the companion application's shared strings, or the widget's own.
enum class StringTable { kestrow, widget };

/// What every look-up gives for a key that its table does not hold.
inline constexpr std::string_view kLocalizedStringNotFound = "localized string not found";

/// An argument of a format text: a count, shown as an unsigned integer in the user's locale, or a text.
using FormatArgument = std::variant<std::uint64_t, std::string>;

/// Texts in the user's language. Main thread.
class Localization {
 public:
  virtual ~Localization() = default;

  /// The text of the key, or `fallback` when the table does not hold it.
  virtual std::string localizedString(std::string_view key, std::string_view fallback, StringTable table) = 0;
  /// The format text filled with the arguments, with plural forms as the locale wants them. A text that is no
  /// valid format is given unchanged.
  virtual std::string format(const std::string& formatText, std::span<const FormatArgument> arguments) = 0;
  /// The texts joined into one with the locale's list delimiter.
  virtual std::string joinCommaDelimited(std::span<const std::string_view> texts) = 0;
};

}  // namespace linewatch
