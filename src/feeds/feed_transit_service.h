#pragma once

#include <functional>
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
  /// Makes ready what the main thread will need of an answer. Called on the service's thread, before the
  /// answer is delivered.
  using Preparation = std::function<void(const TransitLineItems&)>;

  /// `prepare` may be empty.
  FeedTransitService(std::shared_ptr<TransitFeeds> feeds, MainLoop& mainLoop, Preparation prepare = {})
      : QueuedTransitService(
            [feeds = std::move(feeds), &mainLoop,
             prepare = std::move(prepare)](const std::vector<MapItemIdentifier>& identifiers) {
              auto items = feeds->lineItems(identifiers, mainLoop.now());
              if (items && prepare) prepare(*items);
              return items;
            },
            mainLoop) {}
};

}  // namespace linewatch
