#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>

#include <gtest/gtest.h>

#include "random_scenario.h"
#include "world_run.h"

namespace linewatch::worlds {
namespace {

using simulation::Json;

constexpr std::size_t kStepsOfWorld = 100;

/// `scripts/random_worlds` sets these.
std::uint64_t setting(const char* name, std::uint64_t otherwise) {
  const char* text = std::getenv(name);
  return text ? std::stoull(text) : otherwise;
}

/// What is wrong with the smallest scenario that still fails, and the scenario.
std::string report(Json scenario) {
  Json smallest = shrunk(std::move(scenario));
  const Fault fault = faultIn(smallest).value_or(Fault{});
  return "After step " + std::to_string(fault.step) + " " + fault.what +
         "\nThe scenario, for linewatch simulate:\n" + smallest.dump(1);
}

/// Each world of about 100 steps has the seed after that of the world before.
TEST(RandomWorlds, HoldWhatTheWidgetPromises) {
  const std::uint64_t stepCount = setting("LINEWATCH_WORLD_STEPS", 10000);
  std::uint64_t seed = setting("LINEWATCH_WORLD_SEED", 1);
  std::uint64_t performed = 0;
  for (std::size_t world = 0; performed < stepCount; ++seed, ++world) {
    // For a world that ends the process.
    if (world % 1000 == 0) std::cout << "seed " << seed << std::endl;
    Json scenario = randomScenario(seed, kStepsOfWorld);
    const auto fault = faultIn(scenario);
    performed += scenario["steps"].size();
    ASSERT_FALSE(fault) << "The world of seed " << seed << " fails. " << report(std::move(scenario));
  }
  std::cout << performed << " steps" << std::endl;
}

}  // namespace
}  // namespace linewatch::worlds
