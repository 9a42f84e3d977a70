#include "feeds/catalogue/searched_texts.h"

#include <algorithm>

namespace linewatch {

void SearchedTexts::add(const CatalogueFeed& feed, const std::string& countryWords) {
  for (const std::string* const name : {&feed.municipality, &feed.provider}) {
    names_.push_back(searchForm(*name));
    wordsOfNames_.add(names_.back());
  }
  allWords_.add(names_[names_.size() - 2]);
  allWords_.add(names_.back());
  for (const std::string* const text : {&feed.name, &feed.subdivision}) allWords_.add(searchForm(*text));
  allWords_.add(countryWords);
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
