#include "feeds/feed_transit_service.h"

#include <atomic>
#include <utility>

#include "platform/log.h"
#include "shared/failure.h"

namespace linewatch {

namespace {

class FeedLinesTicket final : public TransitLinesTicket {
 public:
  FeedLinesTicket(std::shared_ptr<TransitFeeds> feeds, MainLoop& mainLoop,
                  FeedTransitService::Preparation prepare, std::weak_ptr<BackgroundQueue> queue,
                  std::vector<MapItemIdentifier> identifiers)
      : feeds_(std::move(feeds)),
        mainLoop_(mainLoop),
        prepare_(std::move(prepare)),
        queue_(std::move(queue)),
        identifiers_(std::move(identifiers)) {}

  void submit(Handler handler) override {
    if (isSubmitted_.exchange(true)) return logError("a lines ticket was submitted again");
    const auto queue = queue_.lock();
    const bool isPosted = queue && queue->post([feeds = feeds_, &mainLoop = mainLoop_, prepare = prepare_,
                                                identifiers = identifiers_, handler] {
      auto items = feeds->lineItems(identifiers, mainLoop.now());
      if (items && prepare) prepare(*items);
      answer(mainLoop, handler, std::move(items));
    });
    if (!isPosted)
      answer(mainLoop_, handler,
             failure(FailureCode::cancelled, "transit service", "", "it takes no more look-ups"));
  }

 private:
  static void answer(MainLoop& mainLoop, const Handler& handler, Outcome<TransitLineItems> items) {
    mainLoop.dispatchAsync([items = std::move(items), handler] {
      if (items) {
        handler(std::make_shared<const TransitLineItems>(*items), std::nullopt);
      } else {
        handler(nullptr, items.error());
      }
    });
  }

  std::shared_ptr<TransitFeeds> feeds_;
  MainLoop& mainLoop_;
  FeedTransitService::Preparation prepare_;
  std::weak_ptr<BackgroundQueue> queue_;
  std::vector<MapItemIdentifier> identifiers_;
  std::atomic<bool> isSubmitted_ = false;
};

}  // namespace

std::shared_ptr<TransitLinesTicket> FeedTransitService::ticketForTransitLines(
    std::vector<MapItemIdentifier> identifiers) {
  return std::make_shared<FeedLinesTicket>(feeds_, mainLoop_, prepare_, queue_, std::move(identifiers));
}

}  // namespace linewatch
