#include "feeds/catalogue/catalogue_hit.h"

#include <algorithm>

#include "feeds/catalogue/country_names.h"
#include "feeds/catalogue/search_words.h"

namespace linewatch {

namespace {

/// Bytes. A provider may be a list of a hundred agencies.
constexpr std::size_t kLongestProvider = 80;
constexpr std::size_t kMostNamedTimetables = 3;

/// The start of a long list, up to one of its commas.
std::string shortened(const std::string& list) {
  if (list.size() <= kLongestProvider) return list;
  std::size_t end = list.find_last_of(",;", kLongestProvider);
  if (end == std::string::npos || end == 0) end = list.rfind(' ', kLongestProvider);
  if (end == std::string::npos || end == 0) end = list.find(' ', kLongestProvider);
  return end == std::string::npos ? list : list.substr(0, end) + " …";
}

std::string listOf(const std::vector<std::string>& names, std::string_view comma = ", ") {
  std::string list;
  for (const std::string& name : names) list.append(list.empty() ? "" : comma).append(name);
  return list;
}

/// The comma between the parts of a place.
std::string_view commaIn(std::string_view language) {
  if (language == "ar") return "، ";
  if (language == "ja") return "、";
  return language.starts_with("zh") ? "，" : ", ";
}

/// True if the text says nothing that the other one does not say.
bool isPartOf(const std::string& text, const std::string& other) {
  return searchForm(other).find(searchForm(text)) != std::string::npos;
}

/// The timetables' providers and names. A provider that is nearly that of the alerts is left out, and so is a
/// name that all of several timetables share.
std::vector<std::string> timetableNames(const CatalogueHit& hit) {
  const auto& timetables = hit.timetables;
  const bool isNameShared =
      timetables.size() > 1 && std::ranges::all_of(timetables, [&timetables](const auto& feed) {
        return feed->name == timetables.front()->name;
      });
  const std::string& provider = hit.alerts->provider;
  std::vector<std::string> names;
  for (const SharedCatalogueFeed& feed : timetables) {
    const bool isOwn = isPartOf(feed->provider, provider) || isPartOf(provider, feed->provider);
    std::vector<std::string> words = {isOwn ? "" : feed->provider, isNameShared ? "" : feed->name};
    std::erase(words, "");
    names.push_back(listOf(words));
  }
  return names;
}

}  // namespace

std::string CatalogueHit::provider() const {
  if (!alerts->provider.empty()) return shortened(alerts->provider);
  const auto named =
      std::ranges::find_if(timetables, [](const auto& feed) { return !feed->provider.empty(); });
  return named == timetables.end() ? alerts->id : shortened((*named)->provider);
}

std::string CatalogueHit::place(std::string_view language) const {
  const auto field = [this](std::string CatalogueFeed::*text) {
    if (!((*alerts).*text).empty()) return (*alerts).*text;
    const auto named =
        std::ranges::find_if(timetables, [text](const auto& feed) { return !((*feed).*text).empty(); });
    return named == timetables.end() ? std::string() : (**named).*text;
  };
  const std::string municipality = field(&CatalogueFeed::municipality);
  const std::string subdivision = field(&CatalogueFeed::subdivision);
  std::vector<std::string> names = {municipality};
  if (subdivision != municipality) names.push_back(subdivision);
  names.push_back(countryName(field(&CatalogueFeed::country), language));
  std::erase(names, "");
  return listOf(names, commaIn(language));
}

std::string CatalogueHit::coverage() const {
  std::vector<std::string> candidates = timetableNames(*this);
  candidates.insert(candidates.begin(), alerts->name);
  std::vector<std::string> names;
  for (const std::string& name : candidates) {
    const auto isIn = [&name](const std::string& other) { return isPartOf(name, other); };
    if (name.empty() || isIn(alerts->provider) || std::ranges::any_of(names, isIn)) continue;
    std::erase_if(names, [&name](const std::string& other) { return isPartOf(other, name); });
    names.push_back(name);
  }
  return shortened(listOf(names, "; "));
}

std::string namesOf(const std::vector<SharedCatalogueFeed>& timetables) {
  std::vector<std::string> names;
  for (const SharedCatalogueFeed& feed : timetables) {
    const std::string& name = feed->provider.empty() ? feed->id : feed->provider;
    if (std::ranges::find(names, name) == names.end()) names.push_back(name);
  }
  const bool isLong = names.size() > kMostNamedTimetables;
  if (isLong) names.resize(kMostNamedTimetables);
  for (std::string& name : names) name = shortened(name);
  return listOf(names, "; ") + (isLong ? "; …" : "");
}

const CatalogueKey& CatalogueHit::key() const {
  if (alerts->key.kind != CatalogueKey::Kind::none) return alerts->key;
  const auto locked = std::ranges::find_if(timetables, [](const auto& feed) {
    return feed->key.kind != CatalogueKey::Kind::none && feed->copyUrl.empty();
  });
  return locked == timetables.end() ? alerts->key : (*locked)->key;
}

std::string CatalogueHit::license() const {
  if (!alerts->license.empty()) return alerts->license;
  const auto licensed =
      std::ranges::find_if(timetables, [](const auto& feed) { return !feed->license.empty(); });
  return licensed == timetables.end() ? std::string() : (*licensed)->license;
}

}  // namespace linewatch
