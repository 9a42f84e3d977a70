#pragma once

#include <string>
#include <vector>

#include "simulation/world/transcript.h"

namespace linewatch::simulation {

/// The event as one line of JSON: `{"t": 0.5, "event": "reload", "section": 0}`, the fields in byte order of
/// their keys. The line has no newline at its end.
std::string lineOf(const TranscriptEvent& event);
std::vector<std::string> linesOf(const Transcript& transcript);

}  // namespace linewatch::simulation
