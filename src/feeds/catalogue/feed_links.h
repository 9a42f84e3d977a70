#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "feeds/catalogue/catalogue_feed.h"

namespace linewatch {

/// The references between the feeds of a catalogue.
class FeedLinks {
 public:
  explicit FeedLinks(const std::vector<SharedCatalogueFeed>& feeds);

  /// The feed with that id; null when there is none. The first one of several.
  SharedCatalogueFeed find(const std::string& id) const;
  /// The feeds that replace this one, at the ends of its redirects. The feed itself when it has none, or when
  /// they lead nowhere or in a circle.
  std::vector<SharedCatalogueFeed> currentFeedsOf(const SharedCatalogueFeed& feed) const;
  /// The timetables that the alerts refer to, or the ones that replace them, each once.
  std::vector<SharedCatalogueFeed> timetablesOf(const CatalogueFeed& alerts) const;

 private:
  std::unordered_map<std::string, SharedCatalogueFeed> feedsById_;
};

}  // namespace linewatch
