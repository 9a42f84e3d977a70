#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "simulation/scenario/scenario_json.h"

namespace linewatch::worlds {

/// Something that is wrong after a step, counted from 0.
struct Fault {
  std::size_t step = 0;
  std::string what;
  /// The scenario itself cannot be read.
  bool isUnreadable = false;
};

/// Runs the scenario and checks the widget after every step. Afterwards the scenario has only the steps that
/// were performed, without taps on rows that do not exist, so that `linewatch simulate` can run it. Absent
/// when all is well.
std::optional<Fault> faultIn(simulation::Json& scenario);

/// A smaller scenario that has a fault too: ever smaller parts of its steps are left out. The scenario must
/// have a fault.
simulation::Json shrunk(simulation::Json scenario);

}  // namespace linewatch::worlds
