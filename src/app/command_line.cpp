#include "app/command_line.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/command_grammar.h"
#include "app/common_options.h"
#include "app/completion.h"
#include "feeds/http/redacted.h"
#include "shared/nearest_name.h"

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

/// A hidden flag without effect.
constexpr const char* kSeparator = "--separator";

/// The arguments with the separator before "--". Directly behind an option that may be repeated, the library
/// would take "--" for the end of the option's values, and the next word for an option.
std::vector<const char*> withSeparator(int argc, const char* const* argv) {
  std::vector<const char*> words(argv, argv + argc);
  const auto mark =
      std::ranges::find_if(words, [](const char* word) { return std::string_view(word) == "--"; });
  if (mark != words.end()) words.insert(mark, kSeparator);
  return words;
}

/// Stands before the words of a command line that a shell completes.
constexpr std::string_view kCompletion = "complete";

/// The folder in the words, because what is saved there completes them.
std::optional<std::string> stateDirIn(const std::vector<std::string>& words) {
  const auto option = std::ranges::find(words, "--state-dir");
  const bool hasFolder = option != words.end() && std::next(option) != words.end();
  return hasFolder ? std::optional(*std::next(option)) : std::nullopt;
}

bool hasOption(const CLI::App& app, const std::string& option) {
  if (app.get_option_no_throw(option) != nullptr) return true;
  return std::ranges::any_of(app.get_subcommands([](const CLI::App*) { return true; }),
                             [&](const CLI::App* command) { return hasOption(*command, option); });
}

/// True for a mistyped option that was to give a key, e.g. "--api-key".
bool isMistypedKeyOption(const CLI::App& app, std::string_view option) {
  constexpr std::string_view kWords[] = {"key", "token", "header", "query", "secret", "password"};
  return option.starts_with("-") && !hasOption(app, std::string(option)) &&
         std::ranges::any_of(
             kWords, [option](std::string_view word) { return option.find(word) != std::string_view::npos; });
}

/// The parts of the arguments that may be keys. An error names the argument that was not understood, and
/// after a mistyped option that is its value.
std::vector<std::string> possibleKeys(const CLI::App& app, int argc, const char* const* argv) {
  std::vector<std::string> keys;
  bool isValue = false;
  for (const std::string_view argument : std::span(argv, static_cast<std::size_t>(argc))) {
    const std::size_t colon = argument.find(": ");
    if (colon != std::string_view::npos) keys.emplace_back(argument.substr(colon + 2));
    const std::size_t equals = argument.find('=');
    const bool isOption = isMistypedKeyOption(app, argument.substr(0, equals));
    if ((isOption || isValue) && equals != std::string_view::npos)
      keys.emplace_back(argument.substr(equals + 1));
    if (isValue && !argument.starts_with("-")) keys.emplace_back(argument);
    isValue = isOption && equals == std::string_view::npos;
  }
  return keys;
}

/// The command that was used last: "list" of "linewatch feed list"; the program itself without one.
const CLI::App& usedCommand(const CLI::App& app) {
  const CLI::App* used = &app;
  for (auto next = app.get_subcommands(); !next.empty(); next = used->get_subcommands()) used = next.front();
  return *used;
}

/// The names of the options that a command takes, without "--", and of those of the commands above it.
std::vector<std::string> optionNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command = &usedCommand(app); command != nullptr; command = command->get_parent()) {
    for (const CLI::Option* option : command->get_options()) {
      if (option->get_group().empty()) continue;
      for (const std::string& name : option->get_lnames()) names.push_back(name);
    }
  }
  return names;
}

std::vector<std::string> commandNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command : usedCommand(app).get_subcommands([](const CLI::App*) { return true; }))
    names.push_back(command->get_name());
  return names;
}

/// Names the first word that no command or option takes: "fede is no command; did you mean feed?". The words
/// after it may be right.
std::string unknownWordSentence(const CLI::App& app) {
  const std::vector<std::string> remaining = app.remaining(true);
  const std::string first = remaining.empty() ? "" : remaining.front();
  const std::string word = first.substr(0, first.find('='));
  const std::string dashes = word.starts_with("--") ? "--" : "";
  const auto names = dashes.empty() ? commandNames(app) : optionNames(app);
  const auto nearest =
      nearestName(word.substr(dashes.size()), std::vector<std::string_view>(names.begin(), names.end()));
  const bool isCommand = !word.starts_with("-") && !names.empty();
  return (isCommand ? "there is no command " : "this was not expected: ") + word +
         (nearest ? "; did you mean " + dashes + std::string(*nearest) + "?" : "");
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
  const bool isUnknownWord = dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr;
  return {.output = {},
          .complaint = redacted(isUnknownWord ? unknownWordSentence(app) : error.what(), secrets) + " (" +
                       command + " --help says more)",
          .status = 2};
}

}  // namespace

bool isWithoutSavedState(const CommonOptions& options) {
  return !options.feed.gtfs.empty() || !options.feed.alerts.empty() || !options.favorites.empty();
}

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
  app.add_flag(kSeparator)->group("");
  if (argc > 1 && argv[1] == kCompletion) {
    const std::vector<std::string> typed(argv + 2, argv + argc);
    options.stateDir = stateDirIn(typed);
    return CommandLine{std::move(options), completionOf(app, typed)};
  }
  const std::vector<const char*> words = withSeparator(argc, argv);
  try {
    app.parse(static_cast<int>(words.size()), words.data());
  } catch (const CLI::ParseError& error) {
    return reportOf(app, error, possibleKeys(app, argc, argv));
  }
  return CommandLine{std::move(options), grammar.command()};
}

}  // namespace linewatch::app
