#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "feeds/catalogue/catalogue_feed.h"
#include "feeds/catalogue/search_words.h"

namespace linewatch {

/// How well a feed fits a query, the best first.
enum class CatalogueFit : std::uint8_t {
  name,              // the query is its municipality or provider
  names,             // the words are in its municipality and provider
  startsOfNames,     // the same, but the last word is the start of one
  anyField,          // the words are in all its texts
  startsOfAnyField,  // the same, but the last word is the start of one
  onMap,             // it covers a place that fits
  none,
};

/// The texts of one feed or of several.
class SearchedTexts {
 public:
  /// Adds the texts of the feed. `countryWords`: the search form of the country's names.
  void add(const CatalogueFeed& feed, const std::string& countryWords);
  /// Adds a municipality or provider by which the feed is known.
  void addName(const std::string& name);
  /// Never `onMap`.
  CatalogueFit fit(const SearchQuery& query) const;

 private:
  /// Municipalities and providers, each alone.
  std::vector<std::string> names_;
  SearchWords wordsOfNames_;
  SearchWords allWords_;
};

}  // namespace linewatch
