#pragma once

#include <string>
#include <string_view>

#include "shared/date.h"

namespace linewatch::app {

/// The time in the machine's time zone, "2026-11-24 08:00"; empty for a date outside the calendar.
std::string localTime(Date date);

/// The same as the language of the tag writes it, "24.11.26 08:00" in German.
std::string localTime(Date date, std::string_view languageTag);
/// The same without the date if that is the date of `now`.
std::string localTime(Date date, Date now, std::string_view languageTag);

}  // namespace linewatch::app
