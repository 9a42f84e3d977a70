#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "simulation/recording/recorded_answer.h"
#include "simulation/world/world.h"

namespace linewatch::simulation {

/// Whole microseconds since the start of the scenario.
using Microseconds = std::int64_t;

/// Something that a host, a user or the transit service did: the JSON text of a step, or an answer.
struct RecordedEvent {
  Microseconds time = 0;
  std::variant<std::string, std::shared_ptr<const RecordedAnswer>> what;
  bool isTap = false;
  /// Whether the main loop has run since the event before, however little time has passed.
  bool isInNewTurn = false;
};

/// The events from one fetch to the next, and the state before the first of them. A replay can begin with any
/// segment: it makes a widget that has the state, and lets it appear, which starts the fetch.
struct RecordedSegment {
  /// The start of the fetch.
  Microseconds time = 0;
  /// The list before the fetch has ended; null when the widget shows none.
  std::shared_ptr<const RecordedAnswer> list;
  bool isExpanded = false;
  /// False for the first segment, which begins with a new widget.
  bool isShown = false;
  WorldHost host;
  ui::TextSizeCategory textSize = ui::kDefaultTextSizeCategory;
  /// The last values of the world that the widget was told: the JSON text of each key.
  std::map<std::string, std::string> told;
  /// The favourites that the fetch reads; null until they are known.
  std::shared_ptr<const RecordedFavorites> favorites;
  std::vector<RecordedEvent> events;
  /// The memory of the events, without that of entries, about.
  std::size_t bytes = 0;
};

}  // namespace linewatch::simulation
