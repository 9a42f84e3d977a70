#include <cerrno>
#include <fstream>
#include <iterator>
#include <system_error>

#include "app/commands.h"
#include "simulation/scenario_run.h"

namespace linewatch::app {

namespace {

using desktop::failure;

Error unusable(const std::string& file) { return failure(file, "", std::generic_category().message(errno)); }

}  // namespace

Report simulate(const SimulateCommand& command) {
  std::ifstream file(command.scenario, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (!file || file.bad()) return refused(unusable(command.scenario));
  const auto lines = simulation::runScenario(text);
  if (!lines) return refused(failure(command.scenario, "", sentenceOf(lines.error())));
  Report report;
  for (const std::string& line : *lines) report.output += line + "\n";
  if (command.output.empty()) return report;
  std::ofstream output(command.output, std::ios::binary);
  if (!(output << report.output).flush()) return refused(unusable(command.output));
  report.output.clear();
  return report;
}

}  // namespace linewatch::app
