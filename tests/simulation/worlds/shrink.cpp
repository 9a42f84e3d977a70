#include <algorithm>
#include <cstddef>
#include <utility>

#include "world_run.h"

namespace linewatch::worlds {

namespace {

using simulation::Json;

/// The scenario up to the step after which it has a fault; null when it has none.
Json failing(Json scenario) {
  const auto fault = faultIn(scenario);
  return fault && !fault->isUnreadable ? scenario : Json();
}

Json without(const Json& scenario, std::size_t first, std::size_t count) {
  Json smaller = scenario;
  auto& steps = smaller["steps"];
  const auto from = steps.begin() + static_cast<std::ptrdiff_t>(first);
  steps.erase(from, from + static_cast<std::ptrdiff_t>(std::min(count, steps.size() - first)));
  return smaller;
}

}  // namespace

Json shrunk(Json scenario) {
  for (std::size_t part = scenario["steps"].size() / 2; part > 0; part /= 2) {
    for (std::size_t first = 0; first < scenario["steps"].size();) {
      Json smaller = failing(without(scenario, first, part));
      if (smaller.is_null()) {
        first += part;
      } else {
        scenario = std::move(smaller);
      }
    }
  }
  return scenario;
}

}  // namespace linewatch::worlds
