#include <string>

#include "app/commands.h"
#include "shared/failure.h"
#include "shared/file_contents.h"
#include "simulation/scenario/scenario_run.h"

namespace linewatch::app {

Report simulate(const SimulateCommand& command) {
  const auto text = contentsOf(command.scenario);
  if (!text) return refused(text.error());
  const auto lines = simulation::runScenario(*text);
  if (!lines) return refused(failure(command.scenario, "", sentenceOf(lines.error())));
  Report report;
  for (const std::string& line : *lines) report.output += line + "\n";
  if (command.output.empty()) return report;
  if (const auto error = writeWhole(command.output, report.output)) return refused(*error);
  report.output.clear();
  return report;
}

}  // namespace linewatch::app
