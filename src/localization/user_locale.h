#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "shared/environment.h"

namespace linewatch {

/// The user's languages with their regions, as BCP 47 tags, e.g. "de-CH". There is at least one.
class UserLocale {
 public:
  /// Parses tags and POSIX names: "de", "de-CH", "de_CH.UTF-8". Absent if the text has no language.
  static std::optional<UserLocale> parse(std::string_view text);
  /// The locale in LC_ALL, LC_MESSAGES or LANG, whichever is set first, after the languages in LANGUAGE
  /// ("fr:de"). English if none is set, or if it is "C" or no language; then LANGUAGE does not count.
  static UserLocale fromEnvironment(const Environment& environment);

  /// The best language.
  const std::string& tag() const { return tags_.front(); }
  /// "de" of "de-CH".
  std::string language() const;
  /// Each language with its fallbacks, the most specific first: "de-CH", "de". Chinese and Portuguese have
  /// the variety of the region too: "zh-TW", "zh-Hant", "zh", and "pt-AO", "pt-PT", "pt".
  std::vector<std::string> fallbacks() const;
  /// The first of the user's languages that has this fallback: "de-CH" for "de". Absent if none has it.
  std::optional<std::string> tagWithFallback(std::string_view fallback) const;
  /// Whether the best language is written from right to left.
  bool isRightToLeft() const;

  bool operator==(const UserLocale&) const = default;

 private:
  explicit UserLocale(std::vector<std::string> tags) : tags_(std::move(tags)) {}

  /// The best first; never empty.
  std::vector<std::string> tags_;
};

}  // namespace linewatch
