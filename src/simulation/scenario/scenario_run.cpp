#include "simulation/scenario/scenario_run.h"

#include <algorithm>
#include <utility>
#include <variant>

#include "simulation/scenario/scenario.h"
#include "simulation/scenario/scenario_host.h"
#include "simulation/scenario/scenario_json.h"
#include "simulation/scenario/transcript_lines.h"
#include "widget/transit_incidents_view_controller.h"

namespace linewatch::simulation {

namespace {

/// Whether the step lets time pass beyond the end of the run.
bool passes(const std::optional<Seconds>& until, Seconds now, const Step& step) {
  const auto* advance = std::get_if<step::Advance>(&step);
  return until && advance && now + advance->seconds > *until;
}

ScenarioRun endOf(ScenarioHost& host, std::size_t steps, const RunHosting& hosting) {
  ScenarioRun run{
      .transcript = linesOf(host.transcript()), .time = host.platform().mainLoop().elapsed(), .steps = steps};
  if (!host.controller()) return run;
  const auto& dataSource = host.controller()->dataSource();
  run.list = dataSource->listItem();
  run.isExpanded = dataSource->isExpanded();
  if (hosting.didEnd) hosting.didEnd(*host.controller(), host.platform().world().scale);
  return run;
}

}  // namespace

Outcome<ScenarioRun> runScenarioUntil(std::string_view text, const RunEnd& end, const RunHosting& hosting) {
  auto scenario = readScenario(text);
  if (!scenario) return scenario.error();
  ScenarioHost host(std::move(scenario->world), hosting.wrap);
  const auto& steps = scenario->steps;
  const std::size_t count = end.step ? std::min(steps.size(), *end.step + 1) : steps.size();
  for (std::size_t i = 0; i < count; ++i) {
    const Seconds now = host.platform().mainLoop().elapsed();
    if (passes(end.until, now, steps[i])) {
      host.perform(step::Advance{*end.until - now});
      return endOf(host, i + 1, hosting);
    }
    if (const auto fault = host.perform(steps[i])) {
      return scenarioError("steps[" + std::to_string(i) + "]: " + *fault);
    }
  }
  return endOf(host, count, hosting);
}

Outcome<std::vector<std::string>> runScenario(std::string_view text) {
  auto run = runScenarioUntil(text, {});
  if (!run) return run.error();
  return std::move(run->transcript);
}

}  // namespace linewatch::simulation
