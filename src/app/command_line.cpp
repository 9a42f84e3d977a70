#include "app/command_line.h"

#include <cstddef>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/command_grammar.h"
#include "app/common_options.h"
#include "feeds/http/redacted.h"

namespace linewatch::app {

namespace {

constexpr const char* kAbout =
    "Tells whether the transit lines saved as favourites run normally or have incidents.\n"
    "Without a subcommand it shows the panel; where there is no display it prints the list.\n"
    "Without any configuration it shows a made-up city.";
constexpr const char* kFooter =
    "linewatch COMMAND --help lists the options of a command.\n"
    "Exit status: 0 done; 1 the incidents could not be loaded; 2 wrong usage or unreadable input.";
constexpr const char* kFooterOfCommands =
    "The common options, such as --state-dir, --now and --locale, work too: see linewatch --help.";

/// The values in arguments that look like a header. After a mistyped option such a value may be a key.
std::vector<std::string> headerValues(int argc, const char* const* argv) {
  std::vector<std::string> values;
  for (const std::string_view argument : std::span(argv, static_cast<std::size_t>(argc))) {
    const std::size_t end = argument.find(": ");
    if (end != std::string_view::npos) values.emplace_back(argument.substr(end + 2));
  }
  return values;
}

Report reportOf(const CLI::App& app, const CLI::ParseError& error, const std::vector<std::string>& secrets) {
  if (error.get_exit_code() == 0) {
    std::ostringstream out;
    app.exit(error, out, out);
    return Report::of(out.str());
  }
  std::string command = "linewatch";
  for (auto used = app.get_subcommands(); !used.empty(); used = used.front()->get_subcommands())
    command += " " + used.front()->get_name();
  return {.output = {},
          .complaint = redacted(error.what(), secrets) + " (" + command + " --help says more)",
          .status = 2};
}

}  // namespace

std::variant<CommandLine, Report> parseCommandLine(int argc, const char* const* argv) {
  CLI::App app(kAbout, "linewatch");
  app.set_version_flag("--version", "linewatch " LINEWATCH_VERSION);
  app.require_subcommand(0, 1);
  app.fallthrough();
  CommonOptions options;
  addCommonOptions(app, options);
  app.footer(kFooterOfCommands);
  CommandGrammar grammar(app);
  app.footer(kFooter);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return reportOf(app, error, headerValues(argc, argv));
  }
  return CommandLine{std::move(options), grammar.command()};
}

}  // namespace linewatch::app
