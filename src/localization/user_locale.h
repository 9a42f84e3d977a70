#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "shared/environment.h"

namespace linewatch {

/// The user's language and region, as a BCP 47 tag, e.g. "de-CH", and the languages that the user reads if
/// there are no texts in the first one.
class UserLocale {
 public:
  /// Parses tags and POSIX names: "de", "de-CH", "de_CH.UTF-8". Absent if the text has no language.
  static std::optional<UserLocale> parse(std::string_view text);
  /// The locale in LC_ALL, LC_MESSAGES or LANG, whichever is set first. English if none is set, or if it is
  /// "C" or no language. Otherwise the languages in LANGUAGE, e.g. "pt_BR:pt:en", come before it.
  static UserLocale fromEnvironment(const Environment& environment);

  const std::string& tag() const { return tag_; }
  /// "de" of "de-CH".
  std::string language() const;
  /// The tags and their fallbacks in the order of preference, each the most specific first: "de-CH", "de".
  /// Chinese and Portuguese have the variety of the region too: "zh-TW", "zh-Hant", "zh", and "pt-AO",
  /// "pt-PT", "pt".
  std::vector<std::string> fallbacks() const;
  /// The user's tag that has this fallback: "de-CH" for "de".
  const std::string& tagWithFallback(std::string_view fallback) const;
  /// Whether the language is written from right to left.
  bool isRightToLeft() const;

  bool operator==(const UserLocale&) const = default;

 private:
  explicit UserLocale(std::string tag, std::vector<std::string> others = {})
      : tag_(std::move(tag)), others_(std::move(others)) {}
  static UserLocale withLanguages(std::string_view list, const std::string& localeTag);

  std::string tag_;
  /// The tags of further languages, the preferred ones first.
  std::vector<std::string> others_;
};

}  // namespace linewatch
