#include <sstream>
#include <string>
#include <string_view>
#include <utility>

#include "app/commands.h"
#include "app/terminal_text.h"
#include "machine/terminal_line.h"
#include "shared/failure.h"
#include "shared/file_contents.h"
#include "simulation/scenario/scenario_run.h"
#include "simulation/scenario/transcript_difference.h"
#include "wire/json_text.h"

namespace linewatch::app {

namespace {

bool namesPicture(std::string_view file) {
  return file.ends_with(".png") || file.ends_with(".svg") || file.ends_with(".pdf");
}

/// The lines without control characters, which a terminal would obey.
std::string printable(const std::string& text) {
  std::istringstream lines(text);
  std::string safe;
  for (std::string line; std::getline(lines, line);) safe += terminalLine(line) + "\n";
  return safe;
}

/// Status 1 when the transcripts differ.
Report compare(const std::string& first, const std::string& second) {
  const auto a = contentsOf(first);
  if (!a) return refused(a.error());
  const auto b = contentsOf(second);
  if (!b) return refused(b.error());
  const auto difference = simulation::transcriptDifference({first, *a}, {second, *b});
  if (!difference) return refused(difference.error());
  if (!*difference) return Report::of("The transcripts are the same.\n");
  return {.output = printable(**difference), .complaint = {}, .status = 1};
}

/// The widget at the end of the run, below a line that says when that is.
std::string widgetText(const simulation::ScenarioRun& run, const TerminalStyle& style) {
  std::string text = "At " + jsonText(Value(run.time.count())) + " s, after " + std::to_string(run.steps) +
                     (run.steps == 1 ? " step" : " steps");
  if (!run.list) return text + ": nothing is shown.\n";
  text += run.isExpanded ? ", expanded:\n" : ", compact:\n";
  return text + terminalText(*run.list, run.isExpanded, style);
}

}  // namespace

simulation::RunEnd endOf(const SimulateCommand& command) {
  simulation::RunEnd end{.until = {}, .step = command.step};
  if (command.until) end.until = Seconds(*command.until);
  return end;
}

bool drawsPicture(const SimulateCommand& command) { return command.show && namesPicture(command.output); }

Report simulate(const SimulateCommand& command, const TerminalStyle& style) {
  if (!command.compared.empty()) return compare(command.compared.front(), command.compared.back());
  if (!command.show && namesPicture(command.output))
    return refused(failure(command.output, "", "a transcript is no picture; --show draws one"));
  const auto text = contentsOf(command.scenario);
  if (!text) return refused(text.error());
  const auto run = simulation::runScenarioUntil(*text, endOf(command));
  if (!run) return refused(failure(command.scenario, "", sentenceOf(run.error())));
  Report report;
  if (command.show) {
    report.output = widgetText(*run, command.output.empty() ? style : TerminalStyle());
  } else {
    for (const std::string& line : run->transcript) report.output += line + "\n";
  }
  if (command.output.empty()) return report;
  if (const auto error = writeWhole(command.output, report.output)) return refused(*error);
  report.output.clear();
  return report;
}

}  // namespace linewatch::app
