#pragma once

#include <deque>
#include <string>

#include "simulation/recording/recorded_segment.h"
#include "simulation/world/world.h"

namespace linewatch::simulation {

/// The recorded segments as a scenario. `world` has the start, locale, layout direction, scale and
/// preferences.
std::string recordingText(World world, const std::deque<RecordedSegment>& segments);

}  // namespace linewatch::simulation
