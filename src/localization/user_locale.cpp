#include "localization/user_locale.h"

#include <algorithm>
#include <cctype>
#include <initializer_list>
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

bool isOneOf(std::string_view region, std::initializer_list<std::string_view> regions) {
  return std::ranges::find(regions, region) != regions.end();
}

/// The variety of Chinese or Portuguese that people in the tag's region read, e.g. "zh-Hant" for "zh-TW".
/// Empty for other languages, and if the tag itself names the variety.
std::string_view varietyOf(std::string_view tag) {
  const std::string_view language = tag.substr(0, tag.find('-'));
  const std::string_view rest = tag.substr(std::min(language.size() + 1, tag.size()));
  if (language == "zh" && !rest.starts_with("Han")) {
    return isOneOf(rest, {"TW", "HK", "MO"}) ? "zh-Hant" : "zh-Hans";
  }
  if (language == "pt" && !isOneOf(rest, {"", "BR", "PT"})) return "pt-PT";
  return {};
}

std::optional<std::string> canonicalTag(const std::string& tag) {
  if (!isWellFormed(tag)) return std::nullopt;
  UErrorCode error = U_ZERO_ERROR;
  const icu::Locale locale = icu::Locale::forLanguageTag(tag, error);
  if (U_FAILURE(error) || locale.isBogus() || locale.getISO3Language()[0] == '\0') return std::nullopt;
  auto canonical = locale.toLanguageTag<std::string>(error);
  return U_SUCCESS(error) ? std::optional(std::move(canonical)) : std::nullopt;
}

/// The tag and its fallbacks, the most specific first.
std::vector<std::string> fallbacksOf(const std::string& whole) {
  std::vector<std::string> tags = {whole};
  for (std::size_t end = whole.rfind('-'); end != std::string::npos; end = tags.back().rfind('-')) {
    tags.push_back(tags.back().substr(0, end));
  }
  const std::string_view variety = varietyOf(whole);
  if (!variety.empty()) tags.emplace(tags.size() > 1 ? tags.end() - 1 : tags.end(), variety);
  return tags;
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
  std::vector<std::string> tags = fallbacksOf(tag_);
  for (const std::string& other : others_) {
    for (std::string& tag : fallbacksOf(other)) {
      if (std::ranges::find(tags, tag) == tags.end()) tags.push_back(std::move(tag));
    }
  }
  return tags;
}

const std::string& UserLocale::tagWithFallback(std::string_view fallback) const {
  const auto hasFallback = [fallback](const std::string& tag) {
    const std::vector<std::string> tags = fallbacksOf(tag);
    return std::ranges::find(tags, fallback) != tags.end();
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
