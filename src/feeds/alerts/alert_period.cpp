#include "feeds/alerts/alert_period.h"

#include <limits>
#include <tuple>

namespace linewatch {

namespace {

constexpr double kForever = std::numeric_limits<double>::infinity();
// 2100-01-01. Agencies write later ends for "until further notice".
constexpr std::uint64_t kNoRealEnd = 4'102'444'800;

struct Span {
  double start;
  double end;
};

Span spanOf(const AlertPeriod& period) {
  return {.start = period.start == 0 ? -kForever : static_cast<double>(period.start),
          .end = period.end == 0 || period.end >= kNoRealEnd ? kForever : static_cast<double>(period.end)};
}

std::optional<Date> dateAt(double seconds) {
  if (seconds == kForever || seconds == -kForever) return std::nullopt;
  return Date(Seconds(seconds));
}

// The period with the greatest rank is shown: a running one, else the next to come, else the last one.
std::tuple<int, double, double> rank(const Span& span, double now) {
  if (span.start <= now && now < span.end) return {2, span.end, -span.start};
  if (span.start > now) return {1, -span.start, span.end};
  return {0, span.end, span.start};
}

}  // namespace

ShownPeriod periodToShow(std::span<const AlertPeriod> periods, Date now) {
  const double time = secondsOf(now);
  std::optional<Span> best;
  for (const AlertPeriod& period : periods) {
    if (period.use != AlertPeriod::Use::show) continue;
    const Span span = spanOf(period);
    if (!best || rank(span, time) > rank(*best, time)) best = span;
  }
  if (!best) return {};
  return {.start = dateAt(best->start), .end = dateAt(best->end)};
}

}  // namespace linewatch
