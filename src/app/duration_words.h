#pragma once

#include <string>

#include "shared/date.h"

namespace linewatch::app {

/// The duration in its largest unit, rounded down: "40 seconds", "1 minute", "5 hours", "3 days". A negative
/// one is "0 seconds".
std::string durationInWords(Seconds duration);

}  // namespace linewatch::app
