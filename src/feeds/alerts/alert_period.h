#pragma once

#include <optional>
#include <span>

#include "feeds/alerts/alerts_message.h"
#include "shared/date.h"

namespace linewatch {

/// An absent side is open.
struct ShownPeriod {
  std::optional<Date> start;
  std::optional<Date> end;

  bool operator==(const ShownPeriod&) const = default;
};

/// The period that an incident has at a time: the one that runs (start ≤ now < end), of several the one that
/// ends last; else the next to come; else the last that ran. Open on both sides when there are no periods to
/// show in.
ShownPeriod periodToShow(std::span<const AlertPeriod> periods, Date now);

}  // namespace linewatch
