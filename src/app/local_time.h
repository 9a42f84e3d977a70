#pragma once

#include <string>

#include "localization/user_locale.h"
#include "shared/date.h"

namespace linewatch::app {

/// The time in the machine's time zone, "2026-11-24 08:00"; empty for a date outside the calendar.
std::string localTime(Date date);

/// The same in the user's language, "24.11.26 08:00" in German.
std::string localTime(Date date, const UserLocale& locale);

/// A duration in its largest unit, rounded down: "less than a minute", "12 minutes", "1 hour", "3 days".
std::string durationInWords(Seconds duration);

}  // namespace linewatch::app
