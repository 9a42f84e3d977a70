#include "feeds/catalogue/wanted_place.h"

#include <algorithm>

#include "feeds/catalogue/known_places.h"

namespace linewatch {

WantedPlace::WantedPlace(const SearchQuery& query) : queries_{query} {
  const auto known = query.isEmpty() ? std::nullopt : knownPlace(query.text());
  if (!known) return;
  city_ = MappedPlace{known->names.front(), known->country, known->position};
  const bool isWhole = std::ranges::any_of(
      known->names, [&query](const std::string& name) { return searchForm(name) == query.text(); });
  // While the name is not whole, other names would push away what the rider types.
  if (!isWhole) return;
  for (const std::string& name : known->names) queries_.emplace_back(name);
}

CatalogueFit WantedPlace::fitOf(const SearchedTexts& texts) const {
  CatalogueFit best = CatalogueFit::none;
  for (const SearchQuery& query : queries_) best = std::min(best, texts.fit(query));
  return best;
}

}  // namespace linewatch
