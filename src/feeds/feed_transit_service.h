#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "feeds/queued_transit_service.h"
#include "feeds/transit_feeds.h"
#include "platform/main_loop.h"

namespace linewatch {

/// The transit service over `TransitFeeds`.
class FeedTransitService final : public QueuedTransitService {
 public:
  FeedTransitService(std::shared_ptr<TransitFeeds> feeds, MainLoop& mainLoop)
      : QueuedTransitService(
            [feeds = std::move(feeds), &mainLoop](const std::vector<MapItemIdentifier>& identifiers) {
              return feeds->lineItems(identifiers, mainLoop.now());
            },
            mainLoop) {}
};

}  // namespace linewatch
