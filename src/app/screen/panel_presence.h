#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "companion/opened_content.h"
#include "desktop/desktop_platform.h"
#include "desktop/presence/bus_presence.h"
#include "desktop/presence/news_watch.h"
#include "feeds/background_queue.h"
#include "feeds/feed_state.h"
#include "localization/icu_localization.h"
#include "platform/transit_line.h"
#include "shared/date.h"
#include "status/transit_status.h"

namespace linewatch::app {

/// Follows the news for everything beside the window, and tells the bus. Main thread. Platform and bus must
/// outlive it.
class PanelPresence {
 public:
  /// `refresh`: the time between two questions while the panel is hidden.
  PanelPresence(desktop::DesktopPlatform& platform, const UserLocale& locale, Seconds refresh,
                desktop::BusPresence& bus);

  desktop::NewsWatch& news() { return news_; }
  /// The news that the bus has.
  struct Told {
    TransitStatus status;
    std::vector<FeedState> feeds;
  };
  /// Absent before the first answer.
  const std::optional<Told>& told() const { return told_; }
  /// Tells the bus, in the language of this object. The next answer replaces the news.
  void tell(Told news);
  /// The incidents with these ids in the last answer, in the order of the ids. Leaves out those that have
  /// gone.
  StoredIncidents incidents(std::span<const std::uint64_t> muids) const;

 private:
  void describe(const desktop::HeardAnswer& answer, std::function<void(const TransitNews&)> done);

  desktop::DesktopPlatform& platform_;
  IcuLocalization texts_;
  desktop::BusPresence& bus_;
  /// The lines of the last answer; null before the first answer and after a failure.
  std::shared_ptr<const TransitLineItems> lines_;
  std::optional<Told> told_;
  desktop::NewsWatch news_;
  std::shared_ptr<void> listening_;
  /// The last member, because its actions use the others.
  BackgroundQueue queue_;
};

/// The properties of the bus object for a status and the states of the feeds.
desktop::BusNews busNews(const TransitStatus& status, const std::vector<FeedState>& feeds,
                         IcuLocalization& texts);

}  // namespace linewatch::app
