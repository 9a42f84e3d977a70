#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "platform/map_item_identifier.h"
#include "platform/transit_line.h"
#include "shared/error.h"

namespace linewatch {

/// A look-up of lines that can be submitted once.
class TransitLinesTicket {
 public:
  /// The items, or null when there are none to give; the error, if the look-up failed. Called on the main
  /// thread.
  using Handler =
      std::function<void(std::shared_ptr<const TransitLineItems> lineItems, std::optional<Error> error)>;

  virtual ~TransitLinesTicket() = default;

  /// Starts the look-up and returns. `handler` is called exactly once, on the main thread, later than this
  /// call returns. A second submission starts nothing, is logged, and its handler never called. May be called
  /// on any thread.
  virtual void submit(Handler handler) = 0;
};

/// Answers lines with their current incidents.
class TransitService {
 public:
  virtual ~TransitService() = default;

  /// A ticket for the lines asked. Any thread.
  virtual std::shared_ptr<TransitLinesTicket> ticketForTransitLines(
      std::vector<MapItemIdentifier> identifiers) = 0;
};

}  // namespace linewatch
