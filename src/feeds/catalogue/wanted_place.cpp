#include "feeds/catalogue/wanted_place.h"

#include <algorithm>

#include "feeds/catalogue/known_places.h"

namespace linewatch {

WantedPlace::WantedPlace(const SearchQuery& query) : queries_{query} {
  const auto known = query.isEmpty() ? std::nullopt : knownPlace(query.text());
  if (!known) return;
  city_ = MappedPlace{known->names.front(), known->country, known->position};
  isCityWhole_ = std::ranges::any_of(
      known->names, [&query](const std::string& name) { return searchForm(name) == query.text(); });
  // While the name is not whole, other names would push away what the rider types.
  if (!isCityWhole_) return;
  for (const std::string& name : known->names) queries_.emplace_back(name);
}

CatalogueFit WantedPlace::fitOf(const SearchedTexts& texts, const std::string& country) const {
  CatalogueFit best = CatalogueFit::none;
  for (const SearchQuery& query : queries_) best = std::min(best, texts.fit(query));
  const bool isAbroad = isCityWhole_ && !country.empty() && country != city_->country;
  return isAbroad && best > CatalogueFit::names ? CatalogueFit::none : best;
}

}  // namespace linewatch
