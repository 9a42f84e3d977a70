#include "simulation/scenario/scenario_run.h"

#include <utility>

#include "simulation/scenario/scenario.h"
#include "simulation/scenario/scenario_host.h"
#include "simulation/scenario/scenario_json.h"
#include "simulation/scenario/transcript_lines.h"

namespace linewatch::simulation {

Outcome<std::vector<std::string>> runScenario(std::string_view text) {
  auto scenario = readScenario(text);
  if (!scenario) return scenario.error();
  ScenarioHost host(std::move(scenario->world));
  for (std::size_t i = 0; i < scenario->steps.size(); ++i) {
    if (const auto fault = host.perform(scenario->steps[i])) {
      return scenarioError("steps[" + std::to_string(i) + "]: " + *fault);
    }
  }
  return linesOf(host.transcript());
}

}  // namespace linewatch::simulation
