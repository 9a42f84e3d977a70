#include "desktop/shown_feeds.h"

#include <string>

#include "desktop/base/failure.h"

namespace linewatch::desktop {

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
  if (const auto aside = saved.state->lastSetAside()) {
    return failure("state database", saved.state->file().string(),
                   "it was damaged, and is set aside as " + aside->filename().string() +
                       ": add your feeds and favourites again, or remove that file to start anew");
  }
  return std::vector<StoredFeed>{sampleFeed(saved.sampleCity)};
}

}  // namespace linewatch::desktop
