#include "app/duration_words.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace linewatch::app {

std::string durationInWords(Seconds duration) {
  struct Unit {
    double seconds;
    const char* name;
  };
  constexpr Unit kUnits[] = {{86400, "day"}, {3600, "hour"}, {60, "minute"}, {1, "second"}};
  const double seconds = std::clamp(duration.count(), 0.0, 1e12);
  const auto* unit =
      std::ranges::find_if(kUnits, [seconds](const Unit& each) { return seconds >= each.seconds; });
  if (unit == std::end(kUnits)) --unit;
  const auto count = static_cast<std::uint64_t>(seconds / unit->seconds);
  return std::to_string(count) + " " + unit->name + (count == 1 ? "" : "s");
}

}  // namespace linewatch::app
