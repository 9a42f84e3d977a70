#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "shared/environment.h"

namespace linewatch {

/// The user's language and region, as a BCP 47 tag, e.g. "de-CH".
class UserLocale {
 public:
  /// Parses tags and POSIX names: "de", "de-CH", "de_CH.UTF-8". Absent if the text has no language.
  static std::optional<UserLocale> parse(std::string_view text);
  /// The locale in LC_ALL, LC_MESSAGES or LANG, whichever is set first. English if none is set, or if it is
  /// "C" or no language.
  static UserLocale fromEnvironment(const Environment& environment);

  const std::string& tag() const { return tag_; }
  /// "de" of "de-CH".
  std::string language() const;
  /// The tag and its fallbacks, the most specific first: "de-CH", "de". Chinese and Portuguese have the
  /// variety of the region too: "zh-TW", "zh-Hant", "zh", and "pt-AO", "pt-PT", "pt".
  std::vector<std::string> fallbacks() const;
  /// Whether the language is written from right to left.
  bool isRightToLeft() const;

 private:
  explicit UserLocale(std::string tag) : tag_(std::move(tag)) {}

  std::string tag_;
};

}  // namespace linewatch
