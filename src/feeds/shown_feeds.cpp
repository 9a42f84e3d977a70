#include "feeds/shown_feeds.h"

#include <algorithm>
#include <string>

#include "shared/failure.h"

namespace linewatch {

namespace {

StoredFeed sampleFeed(const std::filesystem::path& city) {
  return {std::string(kSampleFeedName), (city / "gtfs").string(), (city / "alerts.pb").string()};
}

}  // namespace

Outcome<std::vector<StoredFeed>> ShownFeeds::read() const {
  if (const auto* const given = std::get_if<StoredFeed>(&source_)) return std::vector<StoredFeed>{*given};
  const Saved& saved = std::get<Saved>(source_);
  auto stored = StoredFeeds(saved.state).list();
  if (!stored || !stored->empty()) return stored;
  if (auto lost = saved.state->loss()) return *std::move(lost);
  const auto favorites = StoredFavorites(saved.state).list();
  if (!favorites) return favorites.error();
  // Read again: another program may have added a feed and its favourites meanwhile.
  if (std::ranges::any_of(*favorites, isOfAddedFeed)) return StoredFeeds(saved.state).list();
  return std::vector<StoredFeed>{sampleFeed(saved.sampleCity)};
}

}  // namespace linewatch
