#include <cerrno>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <system_error>

#include "app/commands.h"
#include "desktop/base/failure.h"
#include "desktop/file_contents.h"
#include "simulation/scenario_run.h"

namespace linewatch::app {

namespace {

bool isWritten(const std::filesystem::path& file, const std::string& text) {
  std::ofstream output(file, std::ios::binary);
  return (output << text).flush().good();
}

/// Writes a plain file whole or not at all: what it held stays until the new text is on the disk. Devices and
/// links are written as they are. An error names the file.
std::optional<Error> writeWhole(const std::filesystem::path& file, const std::string& text) {
  std::error_code error;
  const auto kind = std::filesystem::symlink_status(file, error).type();
  const bool isPlain =
      kind == std::filesystem::file_type::not_found || kind == std::filesystem::file_type::regular;
  const std::filesystem::path first = file.string() + (isPlain ? ".part" : "");
  errno = 0;
  if (!isWritten(first, text)) {
    error = {errno, std::generic_category()};
  } else if (isPlain) {
    std::filesystem::rename(first, file, error);
  } else {
    return std::nullopt;
  }
  if (!error) return std::nullopt;
  std::error_code ignored;
  if (isPlain) std::filesystem::remove(first, ignored);
  return desktop::failure(file.string(), "", error.message());
}

}  // namespace

Report simulate(const SimulateCommand& command) {
  const auto text = desktop::contentsOf(command.scenario);
  if (!text) return refused(text.error());
  const auto lines = simulation::runScenario(*text);
  if (!lines) return refused(desktop::failure(command.scenario, "", sentenceOf(lines.error())));
  Report report;
  for (const std::string& line : *lines) report.output += line + "\n";
  if (command.output.empty()) return report;
  if (const auto error = writeWhole(command.output, report.output)) return refused(*error);
  report.output.clear();
  return report;
}

}  // namespace linewatch::app
