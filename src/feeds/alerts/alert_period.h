#pragma once

#include <optional>
#include <span>

#include "feeds/alerts/alerts_message.h"
#include "shared/date.h"

namespace linewatch {

/// An absent start or end is open.
struct ShownPeriod {
  std::optional<Date> start;
  std::optional<Date> end;

  bool operator==(const ShownPeriod&) const = default;
};

/// The period to show at `now`: the running one (start ≤ now < end), of several the one that ends last; else
/// the next to come; else the last one. Open on both sides when the alert has no periods to be shown in.
ShownPeriod periodToShow(std::span<const AlertPeriod> periods, Date now);

}  // namespace linewatch
