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
    return locale ? withLanguages(valueOf(environment, "LANGUAGE"), *locale) : UserLocale("en");
  }
  return UserLocale("en");
}

std::string UserLocale::language() const { return tag_.substr(0, tag_.find('-')); }

std::vector<std::string> UserLocale::fallbacks() const {
  std::vector<std::string> tags;
  const auto addWithFallbacks = [&tags](std::string tag) {
    for (std::size_t end = tag.size(); end != std::string::npos; end = tag.rfind('-')) {
      tag.resize(end);
      if (std::ranges::find(tags, tag) == tags.end()) tags.push_back(tag);
    }
  };
  addWithFallbacks(tag_);
  std::ranges::for_each(others_, addWithFallbacks);
  return tags;
}

const std::string& UserLocale::tagWithFallback(std::string_view fallback) const {
  const auto hasFallback = [fallback](const std::string& tag) {
    return tag.starts_with(fallback) && (tag.size() == fallback.size() || tag[fallback.size()] == '-');
  };
  if (hasFallback(tag_)) return tag_;
  const auto other = std::ranges::find_if(others_, hasFallback);
  return other == others_.end() ? tag_ : *other;
}

/// Words of the list that are no languages do not count. A language without a region has that of the locale
/// if it is the locale's language.
UserLocale UserLocale::withLanguages(std::string_view list, const std::string& localeTag) {
  std::vector<std::string> tags;
  while (!list.empty()) {
    const std::size_t end = std::min(list.find(':'), list.size());
    if (auto tag = canonicalTag(tagOfPosixName(list.substr(0, end)))) tags.push_back(*std::move(tag));
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  if (tags.empty()) return UserLocale(localeTag);
  tags.push_back(localeTag);
  const bool isSameLanguage = localeTag.starts_with(tags.front() + "-");
  const std::string first = isSameLanguage ? localeTag : tags.front();
  return UserLocale(first, {tags.begin() + 1, tags.end()});
}

bool UserLocale::isRightToLeft() const {
  UErrorCode error = U_ZERO_ERROR;
  const icu::Locale locale = icu::Locale::forLanguageTag(tag_, error);
  return U_SUCCESS(error) && locale.isRightToLeft() != 0;
}

}  // namespace linewatch
