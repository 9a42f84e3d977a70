#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "list/transit_list_item.h"
#include "shared/date.h"
#include "shared/outcome.h"
#include "simulation/scenario/scenario_host.h"

namespace linewatch::simulation {

/// Where a run ends before the scenario does.
struct RunEnd {
  /// The time, from the scenario's start: what happens at that time is part of the run. Absent: no limit.
  std::optional<Seconds> until;
  /// The last step, counted from 0. Absent: no limit.
  std::optional<std::size_t> step;
};

/// A run of a scenario.
struct ScenarioRun {
  /// The lines of the transcript.
  std::vector<std::string> transcript;
  /// The time at the end of the run, from the scenario's start.
  Seconds time{0};
  /// The number of steps performed; one that `RunEnd::until` cut short is one of them.
  std::size_t steps = 0;
  /// The list of the widget at the end; null when there was no widget.
  std::shared_ptr<const RVTransitListItem> list;
  bool isExpanded = false;
};

/// Additions of the caller to a run.
struct RunHosting {
  ScenarioHost::Wrap wrap = {};
  /// Called at the end of the run, while the platform is installed, when there is a widget. `scale`: pixels
  /// per point.
  std::function<void(RVTransitIncidentsViewController& controller, double scale)> didEnd = {};
};

/// Runs a scenario from its JSON text. Returns the run, or the first fault in the scenario. While it runs,
/// the scenario's platform is installed; afterwards no platform is.
Outcome<ScenarioRun> runScenarioUntil(std::string_view text, const RunEnd& end,
                                      const RunHosting& hosting = {});
/// The lines of the transcript of the whole scenario.
Outcome<std::vector<std::string>> runScenario(std::string_view text);

}  // namespace linewatch::simulation
