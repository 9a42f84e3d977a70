#include "feeds/alerts/translation_choice.h"

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <tuple>
#include <utility>

#include "feeds/text/ascii.h"

namespace linewatch {

namespace {

char tagByte(char byte) { return byte == '_' ? '-' : asciiSmall(byte); }

/// Removes the first part of a tag and returns it.
std::string_view takeSubtag(std::string_view& tag) {
  const std::size_t end = std::min(tag.find_first_of("-_"), tag.size());
  const std::string_view subtag = tag.substr(0, end);
  tag.remove_prefix(std::min(end + 1, tag.size()));
  return subtag;
}

bool isSameSubtag(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, {}, tagByte, tagByte);
}

/// A Chinese tag with the script of its region, unless it names one: "zh-TW" gives "zh-Hant-TW".
std::string withScript(std::string_view tag) {
  std::string_view rest = tag;
  if (!isSameSubtag(takeSubtag(rest), "zh")) return std::string(tag);
  const std::string_view region = takeSubtag(rest);
  const auto isOneOf = [region](std::initializer_list<std::string_view> regions) {
    return std::ranges::any_of(regions,
                               [region](std::string_view each) { return isSameSubtag(region, each); });
  };
  const char* const script = isOneOf({"TW", "HK", "MO"}) ? "Hant" : isOneOf({"CN", "SG"}) ? "Hans" : nullptr;
  if (script == nullptr) return std::string(tag);
  return std::string("zh-") + script + std::string(tag.substr(2));
}

/// How well a tag fits: 0 for another language, more for each part that is the same, and one more when the
/// given tag has no further part.
int fit(std::string_view wantedTag, std::string_view givenTag) {
  const std::string expandedWanted = withScript(wantedTag), expanded = withScript(givenTag);
  std::string_view wanted = expandedWanted, tag = expanded;
  int same = 0;
  while (!wanted.empty() && !tag.empty()) {
    if (!isSameSubtag(takeSubtag(wanted), takeSubtag(tag))) return 2 * same;
    ++same;
  }
  return same == 0 ? 0 : 2 * same + (tag.empty() ? 1 : 0);
}

/// Smaller is better.
using Rank = std::tuple<int, std::size_t, int>;

Rank rankOf(std::string_view tag, std::span<const std::string> userLanguages, std::string_view feedLanguage) {
  for (std::size_t place = 0; place < userLanguages.size(); ++place) {
    if (const int common = fit(userLanguages[place], tag); common > 0) return {0, place, -common};
  }
  if (const int common = fit(feedLanguage, tag); common > 0) return {1, 0, -common};
  return {tag.empty() ? 2 : 3, 0, 0};
}

}  // namespace

std::vector<AlertTranslation> translationsByFit(std::vector<AlertTranslation> translations,
                                                std::span<const std::string> userLanguages,
                                                std::string_view feedLanguage) {
  if (translations.size() < 2) return translations;
  std::ranges::stable_sort(translations, {}, [&](const AlertTranslation& translation) {
    return rankOf(translation.language, userLanguages, feedLanguage);
  });
  return translations;
}

}  // namespace linewatch
