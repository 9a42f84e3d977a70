#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "feeds/background_queue.h"
#include "platform/main_loop.h"
#include "platform/transit_service.h"
#include "shared/outcome.h"

namespace linewatch {

/// A transit service over a function. Look-ups run one after the other on a thread of the service, and their
/// answers arrive on the main thread. The destructor waits for the submitted look-ups; a ticket that is
/// submitted later is answered with an error. The main loop must outlive the service and its tickets.
class QueuedTransitService : public TransitService {
 public:
  /// Finds the lines in the order asked, and leaves out lines that it does not know. Called on the service's
  /// thread, where it may wait for a server.
  using LookUp = std::function<Outcome<TransitLineItems>(const std::vector<MapItemIdentifier>& identifiers)>;

  QueuedTransitService(LookUp lookUp, MainLoop& mainLoop)
      : lookUp_(std::move(lookUp)), mainLoop_(mainLoop), queue_(std::make_shared<BackgroundQueue>()) {}

  std::shared_ptr<TransitLinesTicket> ticketForTransitLines(
      std::vector<MapItemIdentifier> identifiers) override;
  /// Waits for the submitted look-ups and takes no more.
  void finish() { queue_->finish(); }

 private:
  LookUp lookUp_;
  MainLoop& mainLoop_;
  std::shared_ptr<BackgroundQueue> queue_;
};

}  // namespace linewatch
