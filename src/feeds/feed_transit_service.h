#pragma once

#include <memory>
#include <vector>

#include "feeds/background_queue.h"
#include "feeds/transit_feeds.h"
#include "platform/main_loop.h"
#include "platform/transit_service.h"

namespace linewatch {

/// The transit service over open feeds. Look-ups run one after the other on a thread of the service's own, so
/// that a slow server never holds up the main thread; their answers arrive on the main thread. The main loop
/// must outlive the tickets and the service, which waits for the look-ups submitted when it is destroyed. A
/// ticket that comes later is answered with an error.
class FeedTransitService final : public TransitService {
 public:
  FeedTransitService(std::shared_ptr<TransitFeeds> feeds, MainLoop& mainLoop)
      : feeds_(std::move(feeds)), mainLoop_(mainLoop), queue_(std::make_shared<BackgroundQueue>()) {}

  std::shared_ptr<TransitLinesTicket> ticketForTransitLines(
      std::vector<MapItemIdentifier> identifiers) override;
  /// Waits for the look-ups under way, and takes no more.
  void finish() { queue_->finish(); }

 private:
  std::shared_ptr<TransitFeeds> feeds_;
  MainLoop& mainLoop_;
  std::shared_ptr<BackgroundQueue> queue_;
};

}  // namespace linewatch
