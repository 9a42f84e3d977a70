#pragma once

#include <string>

#include "shared/date.h"

namespace linewatch::app {

/// The minute in the machine's time zone, "2026-11-24 08:00"; empty for a date that no calendar reaches.
std::string localTime(Date date);

}  // namespace linewatch::app
