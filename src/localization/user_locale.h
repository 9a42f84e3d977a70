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
  /// Absent when the text names no language. Takes tags and POSIX names: "de", "de-CH", "de_CH.UTF-8".
  static std::optional<UserLocale> parse(std::string_view text);
  /// The locale in LC_ALL, else LC_MESSAGES, else LANG. English when none is set, or when it is "C" or not a
  /// language.
  static UserLocale fromEnvironment(const Environment& environment);

  const std::string& tag() const { return tag_; }
  /// "de" of "de-CH".
  std::string language() const;
  /// The tag and its fallbacks, the most specific first: "de-CH", "de".
  std::vector<std::string> fallbacks() const;
  /// Whether the language is written from right to left.
  bool isRightToLeft() const;

 private:
  explicit UserLocale(std::string tag) : tag_(std::move(tag)) {}

  std::string tag_;
};

}  // namespace linewatch
