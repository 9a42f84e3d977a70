#include "desktop/feed_news.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

namespace linewatch::desktop {

namespace {

StatusSeverity severityOf(AlertSeverity severity) {
  switch (severity) {
    case AlertSeverity::info:
      return StatusSeverity::info;
    case AlertSeverity::warning:
      return StatusSeverity::warning;
    case AlertSeverity::severe:
      return StatusSeverity::severe;
    case AlertSeverity::unknownSeverity:
      break;
  }
  return StatusSeverity::unknown;
}

/// When the alerts of the known feeds came; of several the oldest.
std::optional<Date> whenReceived(const std::vector<FeedState>& states) {
  std::optional<Date> oldest;
  for (const FeedState& state : states) {
    if (state.received && state.knowsLines())
      oldest = std::min(oldest.value_or(*state.received), *state.received);
  }
  return oldest;
}

void addSeverities(TransitFeeds& feeds, TransitNews& news) {
  std::vector<std::uint64_t> muids;
  for (const SharedLineItem& line : news.lines) {
    for (const SharedIncident& incident : line->incidents()) muids.push_back(incident->muid());
  }
  if (muids.empty()) return;
  for (const auto& [muid, details] : feeds.detailsOfIncidents(muids))
    news.severities.emplace(muid, severityOf(details.severity));
}

}  // namespace

TransitNews feedNews(DesktopPlatform& platform, std::size_t favorites, const TransitLineItems* lines,
                     const std::optional<Error>& error) {
  TransitFeeds& feeds = platform.feeds();
  // If the favourites cannot be read, no look-up has read which feeds are shown.
  if (error) static_cast<void>(feeds.follow());
  TransitNews news{.favorites = favorites,
                   .error = error,
                   .received = whenReceived(feeds.states()),
                   .isSampleCity = platform.showsSampleCity()};
  if (favorites > 0) {
    for (UnknownLine& line : feeds.unknownLines()) news.unknownLines.push_back(std::move(line.name));
  }
  if (lines && !error) news.lines = *lines;
  addSeverities(feeds, news);
  return news;
}

}  // namespace linewatch::desktop
