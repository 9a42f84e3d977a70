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

/// The tag of the first set variable; absent if it is no language.
std::optional<std::string> tagInVariables(const Environment& environment) {
  for (const char* variable : kVariables) {
    const std::string value = valueOf(environment, variable);
    if (value.empty()) continue;
    const std::string tag = tagOfPosixName(value);
    return tag == "C" || tag == "POSIX" ? std::nullopt : canonicalTag(tag);
  }
  return std::nullopt;
}

/// The languages of a list such as "fr:de". One without a region has that of `tag` if that is its language.
std::vector<std::string> tagsInList(std::string_view list, const std::string& tag) {
  std::vector<std::string> tags;
  while (!list.empty()) {
    const std::string_view name = list.substr(0, list.find(':'));
    list.remove_prefix(std::min(name.size() + 1, list.size()));
    const auto given = canonicalTag(tagOfPosixName(name));
    if (given) tags.push_back(tag.starts_with(*given + '-') ? tag : *given);
  }
  return tags;
}

void addNew(std::string tag, std::vector<std::string>& tags) {
  if (std::ranges::find(tags, tag) == tags.end()) tags.push_back(std::move(tag));
}

std::vector<std::string> fallbacksOf(const std::string& tag) {
  std::vector<std::string> tags = {tag};
  for (std::size_t end = tag.rfind('-'); end != std::string::npos; end = tags.back().rfind('-')) {
    tags.push_back(tags.back().substr(0, end));
  }
  const std::string_view variety = varietyOf(tag);
  if (!variety.empty()) tags.emplace(tags.size() > 1 ? tags.end() - 1 : tags.end(), variety);
  return tags;
}

}  // namespace

std::optional<UserLocale> UserLocale::parse(std::string_view text) {
  auto tag = canonicalTag(tagOfPosixName(text));
  return tag ? std::optional(UserLocale({*std::move(tag)})) : std::nullopt;
}

UserLocale UserLocale::fromEnvironment(const Environment& environment) {
  const auto tag = tagInVariables(environment);
  if (!tag) return UserLocale({"en"});
  std::vector<std::string> tags;
  for (std::string& each : tagsInList(valueOf(environment, "LANGUAGE"), *tag)) addNew(std::move(each), tags);
  addNew(*tag, tags);
  return UserLocale(std::move(tags));
}

std::string UserLocale::language() const { return tag().substr(0, tag().find('-')); }

std::vector<std::string> UserLocale::fallbacks() const {
  std::vector<std::string> all;
  for (const std::string& tag : tags_) {
    for (std::string& fallback : fallbacksOf(tag)) addNew(std::move(fallback), all);
  }
  return all;
}

std::optional<std::string> UserLocale::tagWithFallback(std::string_view fallback) const {
  for (const std::string& tag : tags_) {
    const std::vector<std::string> fallbacks = fallbacksOf(tag);
    if (std::ranges::find(fallbacks, fallback) != fallbacks.end()) return tag;
  }
  return std::nullopt;
}

bool UserLocale::isRightToLeft() const {
  UErrorCode error = U_ZERO_ERROR;
  const icu::Locale locale = icu::Locale::forLanguageTag(tag(), error);
  return U_SUCCESS(error) && locale.isRightToLeft() != 0;
}

}  // namespace linewatch
