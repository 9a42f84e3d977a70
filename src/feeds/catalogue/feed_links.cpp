#include "feeds/catalogue/feed_links.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace linewatch {

namespace {

/// The most feeds that are visited for one feed's redirects.
constexpr std::size_t kMostRedirects = 100;

void addOnce(std::vector<SharedCatalogueFeed>& feeds, const SharedCatalogueFeed& feed) {
  if (std::ranges::find(feeds, feed) == feeds.end()) feeds.push_back(feed);
}

}  // namespace

FeedLinks::FeedLinks(const std::vector<SharedCatalogueFeed>& feeds) {
  for (const SharedCatalogueFeed& feed : feeds) feedsById_.emplace(feed->id, feed);
}

SharedCatalogueFeed FeedLinks::find(const std::string& id) const {
  constexpr std::string_view kPrefix = "mdb-";
  auto entry = feedsById_.find(id);
  // References to imported feeds may have a prefix that the feeds' own ids lack, e.g. "mdb-tld-408".
  if (entry == feedsById_.end() && id.starts_with(kPrefix))
    entry = feedsById_.find(id.substr(kPrefix.size()));
  return entry == feedsById_.end() ? nullptr : entry->second;
}

std::vector<SharedCatalogueFeed> FeedLinks::currentFeedsOf(const SharedCatalogueFeed& feed) const {
  std::vector<SharedCatalogueFeed> reached = {feed};
  std::vector<SharedCatalogueFeed> ends;
  for (std::size_t at = 0; at < reached.size() && at < kMostRedirects; ++at) {
    const SharedCatalogueFeed from = reached[at];
    bool isEnd = true;
    for (const std::string& id : from->replacements) {
      const SharedCatalogueFeed next = find(id);
      if (!next || next->kind != feed->kind) continue;
      isEnd = false;
      addOnce(reached, next);
    }
    if (isEnd) ends.push_back(from);
  }
  if (ends.empty()) ends.push_back(feed);
  return ends;
}

std::vector<SharedCatalogueFeed> FeedLinks::timetablesOf(const CatalogueFeed& alerts) const {
  std::vector<SharedCatalogueFeed> timetables;
  for (const std::string& id : alerts.timetables) {
    const SharedCatalogueFeed named = find(id);
    if (!named || named->kind != CatalogueFeed::Kind::timetable) continue;
    for (const SharedCatalogueFeed& current : currentFeedsOf(named)) addOnce(timetables, current);
  }
  return timetables;
}

}  // namespace linewatch
