#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "feeds/background_queue.h"
#include "feeds/transit_feeds.h"
#include "platform/main_loop.h"
#include "platform/transit_service.h"

namespace linewatch {

/// The transit service over `TransitFeeds`. Look-ups run one after the other on a thread of the service, and
/// their answers arrive on the main thread. The destructor waits for the submitted look-ups; a ticket that is
/// submitted later is answered with an error. The main loop must outlive the service and its tickets.
class FeedTransitService final : public TransitService {
 public:
  /// Makes ready what the main thread will need of an answer. Called on the service's thread, before the
  /// answer is delivered.
  using Preparation = std::function<void(const TransitLineItems&)>;

  /// `prepare` may be empty.
  FeedTransitService(std::shared_ptr<TransitFeeds> feeds, MainLoop& mainLoop, Preparation prepare = {})
      : feeds_(std::move(feeds)),
        mainLoop_(mainLoop),
        prepare_(std::move(prepare)),
        queue_(std::make_shared<BackgroundQueue>()) {}

  std::shared_ptr<TransitLinesTicket> ticketForTransitLines(
      std::vector<MapItemIdentifier> identifiers) override;
  /// Waits for the submitted look-ups and takes no more.
  void finish() { queue_->finish(); }

 private:
  std::shared_ptr<TransitFeeds> feeds_;
  MainLoop& mainLoop_;
  Preparation prepare_;
  std::shared_ptr<BackgroundQueue> queue_;
};

}  // namespace linewatch
