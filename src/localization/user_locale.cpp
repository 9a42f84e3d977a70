#include "localization/user_locale.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <utility>

#include <unicode/locid.h>

namespace linewatch {

namespace {

constexpr const char* kVariables[] = {"LC_ALL", "LC_MESSAGES", "LANG"};

/// Turns the POSIX name "de_CH.UTF-8" into "de-CH": no encoding and variant, and hyphens.
std::string tagOfPosixName(std::string_view name) {
  std::string tag(name.substr(0, name.find_first_of(".@")));
  std::ranges::replace(tag, '_', '-');
  return tag;
}

bool isWellFormed(std::string_view tag) {
  const auto isAlphanumeric = [](unsigned char c) { return c < 0x80 && std::isalnum(c) != 0; };
  if (tag.empty() || tag.size() > 64 || tag.front() == '-' || tag.back() == '-') return false;
  return std::ranges::all_of(
      tag, [&](char c) { return c == '-' || isAlphanumeric(static_cast<unsigned char>(c)); });
}

std::optional<std::string> canonicalTag(const std::string& tag) {
  if (!isWellFormed(tag)) return std::nullopt;
  UErrorCode error = U_ZERO_ERROR;
  const icu::Locale locale = icu::Locale::forLanguageTag(tag, error);
  if (U_FAILURE(error) || locale.isBogus() || locale.getISO3Language()[0] == '\0') return std::nullopt;
  auto canonical = locale.toLanguageTag<std::string>(error);
  return U_SUCCESS(error) ? std::optional(std::move(canonical)) : std::nullopt;
}

}  // namespace

std::optional<UserLocale> UserLocale::parse(std::string_view text) {
  auto tag = canonicalTag(tagOfPosixName(text));
  return tag ? std::optional(UserLocale(*std::move(tag))) : std::nullopt;
}

UserLocale UserLocale::fromEnvironment(const Environment& environment) {
  for (const char* variable : kVariables) {
    const char* value = environment(variable);
    if (value == nullptr || *value == '\0') continue;
    const std::string tag = tagOfPosixName(value);
    const bool isNoLanguage = tag == "C" || tag == "POSIX";
    const auto locale = isNoLanguage ? std::nullopt : canonicalTag(tag);
    return UserLocale(locale.value_or("en"));
  }
  return UserLocale("en");
}

std::string UserLocale::language() const { return tag_.substr(0, tag_.find('-')); }

std::vector<std::string> UserLocale::fallbacks() const {
  std::vector<std::string> tags = {tag_};
  for (std::size_t end = tag_.rfind('-'); end != std::string::npos; end = tags.back().rfind('-')) {
    tags.push_back(tags.back().substr(0, end));
  }
  return tags;
}

bool UserLocale::isRightToLeft() const {
  UErrorCode error = U_ZERO_ERROR;
  const icu::Locale locale = icu::Locale::forLanguageTag(tag_, error);
  return U_SUCCESS(error) && locale.isRightToLeft() != 0;
}

}  // namespace linewatch
