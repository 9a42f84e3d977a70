#include "feeds/queued_transit_service.h"

#include <atomic>
#include <utility>

#include "platform/log.h"
#include "shared/failure.h"

namespace linewatch {

namespace {

using LookUp = QueuedTransitService::LookUp;

class QueuedTicket final : public TransitLinesTicket {
 public:
  QueuedTicket(LookUp lookUp, MainLoop& mainLoop, std::weak_ptr<BackgroundQueue> queue,
               std::vector<MapItemIdentifier> identifiers)
      : lookUp_(std::move(lookUp)),
        mainLoop_(mainLoop),
        queue_(std::move(queue)),
        identifiers_(std::move(identifiers)) {}

  void submit(Handler handler) override {
    if (isSubmitted_.exchange(true)) return logError("a lines ticket was submitted again");
    const auto queue = queue_.lock();
    const bool isPosted =
        queue && queue->post([lookUp = lookUp_, &mainLoop = mainLoop_, identifiers = identifiers_, handler] {
          answer(mainLoop, handler, lookUp(identifiers));
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

  LookUp lookUp_;
  MainLoop& mainLoop_;
  std::weak_ptr<BackgroundQueue> queue_;
  std::vector<MapItemIdentifier> identifiers_;
  std::atomic<bool> isSubmitted_ = false;
};

}  // namespace

std::shared_ptr<TransitLinesTicket> QueuedTransitService::ticketForTransitLines(
    std::vector<MapItemIdentifier> identifiers) {
  return std::make_shared<QueuedTicket>(lookUp_, mainLoop_, queue_, std::move(identifiers));
}

}  // namespace linewatch
