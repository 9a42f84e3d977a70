#include "feeds/catalogue/searched_texts.h"

#include <algorithm>

namespace linewatch {

void SearchedTexts::add(const CatalogueFeed& feed, const std::string& countryWords) {
  for (const std::string* const text : {&feed.municipality, &feed.provider, &feed.name, &feed.subdivision})
    allWords_.add(searchForm(*text));
  allWords_.add(countryWords);
}

void SearchedTexts::addName(const std::string& name) {
  if (name.empty()) return;
  names_.push_back(searchForm(name));
  wordsOfNames_.add(names_.back());
}

CatalogueFit SearchedTexts::fit(const SearchQuery& query) const {
  using enum CatalogueFit;
  if (query.isEmpty()) return startsOfAnyField;
  if (std::ranges::find(names_, query.text()) != names_.end()) return name;
  if (query.fits(wordsOfNames_)) return query.fitsWhole(wordsOfNames_) ? names : startsOfNames;
  if (!query.fits(allWords_)) return none;
  return query.fitsWhole(allWords_) ? anyField : startsOfAnyField;
}

}  // namespace linewatch
