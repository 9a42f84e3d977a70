#include "app/command_line.h"

#include <sstream>
#include <string>
#include <utility>

#include <CLI/CLI.hpp>

#include "app/command_grammar.h"
#include "app/common_options.h"

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

Report reportOf(const CLI::App& app, const CLI::ParseError& error) {
  if (error.get_exit_code() == 0) {
    std::ostringstream out;
    app.exit(error, out, out);
    return Report::of(out.str());
  }
  std::string command = "linewatch";
  for (auto used = app.get_subcommands(); !used.empty(); used = used.front()->get_subcommands())
    command += " " + used.front()->get_name();
  return {.output = {},
          .complaint = std::string(error.what()) + " (" + command + " --help says more)",
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
    return reportOf(app, error);
  }
  return CommandLine{std::move(options), grammar.command()};
}

}  // namespace linewatch::app
