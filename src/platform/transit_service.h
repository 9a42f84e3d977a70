#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "platform/map_item_identifier.h"
#include "platform/transit_line.h"
#include "shared/error.h"

namespace linewatch {

/// A look-up of lines, which can be submitted once.
class TransitLinesTicket {
 public:
  /// Gets the line items (null when the look-up failed) and the error (absent when it succeeded). A service
  /// may give neither. Called on the main thread.
  using Handler =
      std::function<void(std::shared_ptr<const TransitLineItems> lineItems, std::optional<Error> error)>;

  virtual ~TransitLinesTicket() = default;

  /// Starts the look-up and returns. `handler` is called exactly once, on the main thread, after this call
  /// has returned. A second submission is logged and does nothing: its handler is never called. Any thread.
  virtual void submit(Handler handler) = 0;
};

/// Looks up lines with their current incidents.
class TransitService {
 public:
  virtual ~TransitService() = default;

  /// A ticket to look up the lines, which are answered in this order; a line that the service does not know
  /// is left out. Never null. Any thread.
  virtual std::shared_ptr<TransitLinesTicket> ticketForTransitLines(
      std::vector<MapItemIdentifier> identifiers) = 0;
};

}  // namespace linewatch
