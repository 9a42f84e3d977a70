#include "desktop/feed_transit_service.h"

#include <utility>

namespace linewatch::desktop {

namespace {

class FeedLinesTicket final : public TransitLinesTicket {
 public:
  FeedLinesTicket(std::shared_ptr<TransitFeeds> feeds, MainLoop& mainLoop,
                  std::weak_ptr<BackgroundQueue> queue, std::vector<MapItemIdentifier> identifiers)
      : feeds_(std::move(feeds)),
        mainLoop_(mainLoop),
        queue_(std::move(queue)),
        identifiers_(std::move(identifiers)) {}

  void submit(Handler handler) override {
    const auto queue = queue_.lock();
    if (!queue) return;
    queue->post(
        [feeds = feeds_, &mainLoop = mainLoop_, identifiers = identifiers_, handler = std::move(handler)] {
          Outcome<TransitLineItems> items = feeds->lineItems(identifiers, mainLoop.now());
          mainLoop.dispatchAsync([items = std::move(items), handler] {
            if (items) {
              handler(std::make_shared<const TransitLineItems>(*items), std::nullopt);
            } else {
              handler(nullptr, items.error());
            }
          });
        });
  }

 private:
  std::shared_ptr<TransitFeeds> feeds_;
  MainLoop& mainLoop_;
  std::weak_ptr<BackgroundQueue> queue_;
  std::vector<MapItemIdentifier> identifiers_;
};

}  // namespace

std::shared_ptr<TransitLinesTicket> FeedTransitService::ticketForTransitLines(
    std::vector<MapItemIdentifier> identifiers) {
  return std::make_shared<FeedLinesTicket>(feeds_, mainLoop_, queue_, std::move(identifiers));
}

}  // namespace linewatch::desktop
