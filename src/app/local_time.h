#pragma once

#include <string>

#include "shared/date.h"

namespace linewatch::app {

/// The time in the machine's time zone, "2026-11-24 08:00"; empty for a date outside of the calendar.
std::string localTime(Date date);

}  // namespace linewatch::app
