#include "app/command_grammar.h"

#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>
#include <variant>

#include "app/checked_options.h"
#include "app/feed_options.h"
#include "shared/failure.h"
#include "shared/shell_words.h"

namespace linewatch::app {

namespace {

std::string textSizeNames() {
  std::string names;
  for (const std::string_view name : ui::kTextSizeCategoryNames) {
    if (!names.empty()) names += ", ";
    names += name;
  }
  return names;
}

/// Parses a whole number of seconds ("90", "90s") or minutes ("2m"); absent for anything else, and out of
/// range.
std::optional<Seconds> refreshInterval(const std::string& text) {
  const bool isMinutes = text.ends_with('m');
  const char* const end = text.data() + text.size() - (isMinutes || text.ends_with('s') ? 1 : 0);
  std::uint32_t count = 0;
  const auto [stop, trouble] = std::from_chars(text.data(), end, count);
  if (trouble != std::errc() || stop != end) return std::nullopt;
  const Seconds interval{static_cast<double>(count) * (isMinutes ? 60 : 1)};
  return interval >= Seconds(30) && interval <= Seconds(1800) ? std::optional(interval) : std::nullopt;
}

}  // namespace

CommandGrammar::CommandGrammar(CLI::App& app) {
  addPanel(app);
  addShow(app);
  addFavorites(app);
  addLines(app);
  addFeed(app);
  addAnalytics(app);
  addOpen(app);
  addRender(app);
  addSimulate(app);
}

/// Adds a subcommand. When it is used, `fields` becomes the command, with this action.
template <class T>
CLI::App* CommandGrammar::addAction(CLI::App& app, const std::string& name, const std::string& about,
                                    T& fields, typename T::Action action) {
  return app.add_subcommand(name, about)->callback([this, &fields, action] {
    fields.action = action;
    command_ = fields;
  });
}

void CommandGrammar::addPanel(CLI::App& app) {
  CLI::App* const sub = app.add_subcommand("panel", "Show the panel; without a display, print the list");
  sub->add_option_function<std::string>(
         "--companion",
         [this](const std::string& text) {
           auto words = shellWords(text);
           if (!words) throw CLI::ValidationError("--companion", sentenceOf(words.error()));
           panel_.companion = std::move(*words);
         },
         "A command to run with the content of a tapped row, instead of a window")
      ->type_name("COMMAND")
      ->envname("LINEWATCH_COMPANION");
  const auto takeRefresh = [this](const std::string& text) {
    const auto interval = refreshInterval(text);
    panel_.refresh = interval.value_or(panel_.refresh);
    return interval.has_value();
  };
  addChecked(*sub, "--refresh", takeRefresh, "How often it asks for news, 30s to 30m; usually 2m",
             "not a time from 30s to 30m, such as 90, 90s or 2m")
      ->type_name("TIME");
  sub->add_option("--record", panel_.record,
                  "Keep the last hour in a file that simulate runs; without keys and addresses of feeds")
      ->type_name("FILE");
  sub->add_flag("--anonymous", panel_.isAnonymous,
                "Replace names and texts in what is recorded; equal ones stay equal");
  sub->callback([this] { command_ = panel_; });
}

void CommandGrammar::addShow(CLI::App& app) {
  CLI::App* const sub = app.add_subcommand("show", "Print the list once");
  sub->add_flag("--expanded", show_.expanded, "Every row, not just the one of the compact widget");
  sub->add_flag("--upcoming", show_.upcoming, "Print what begins within 7 days instead of the list");
  sub->add_flag("--json", show_.json, "Print feeds, lines, incidents and rows as a JSON object");
  sub->callback([this] { command_ = show_; });
}

void CommandGrammar::addLineChoice(CLI::App& adding) {
  adding.add_option("--stops", favorites_.stops, "The stops whose notices are shown: all, none or IDs")
      ->type_name("all|none|ID,...");
  adding.add_option("--direction", favorites_.direction, "The direction whose incidents are shown")
      ->check(CLI::IsMember({"0", "1", "both"}))
      ->type_name("0|1|both");
}

void CommandGrammar::addFavorites(CLI::App& app) {
  using enum FavoritesCommand::Action;
  CLI::App* const sub = app.add_subcommand("favorites", "List, add or remove favourite lines");
  sub->require_subcommand(0, 1)->fallthrough();
  // A subcommand's callback runs after this one, and replaces this command.
  sub->preparse_callback([this](std::size_t) { command_ = favorites_; });
  addAction(*sub, "list", "List the favourites", favorites_, list);
  struct Row {
    const char *name, *about;
    FavoritesCommand::Action action;
  };
  for (const auto& [name, about, action] : {Row{"add", "Add lines, by name or route id", add},
                                            Row{"remove", "Remove lines, by name or route id", remove}}) {
    CLI::App* const changing = addAction(*sub, name, about, favorites_, action);
    if (action == add) addLineChoice(*changing);
    changing->add_option("LINE", favorites_.lines, "A route id, FEED:ROUTE_ID, or a name that one line has")
        ->required()
        ->type_name("");
  }
}

void CommandGrammar::addLines(CLI::App& app) {
  CLI::App* const sub = app.add_subcommand("lines", "Find lines by name, number or agency");
  sub->add_option("QUERY", lines_.query,
                  "The beginnings of words, or any three letters or more; without it all lines are listed")
      ->type_name("");
  sub->callback([this] { command_ = lines_; });
}

void CommandGrammar::addFeed(CLI::App& app) {
  using enum FeedCommand::Action;
  CLI::App* const sub = app.add_subcommand("feed", "List, add, change or remove feeds");
  sub->require_subcommand(0, 1)->fallthrough();
  sub->preparse_callback([this](std::size_t) { command_ = feed_; });
  addAction(*sub, "list", "List the feeds", feed_, list);
  CLI::App* const adding = addAction(*sub, "add", "Add a feed", feed_, add);
  adding->add_option("NAME", feed_.name, "Its name")->required()->type_name("");
  addLocationOptions(*adding, feed_.options,
                     {.gtfs = "Its timetable: a GTFS folder, zip or URL; may be repeated",
                      .alerts = "Its service alerts: a file or URL; may be repeated",
                      .areRequired = true});
  addKeyOptions(*adding, feed_.options);
  CLI::App* const changing = addAction(*sub, "key", "Change or ask for the key of a feed", feed_, key);
  changing->add_option("NAME", feed_.name, "Its name")->required()->type_name("");
  addKeyOptions(*changing, feed_.options);
  changing->add_flag("--remove", feed_.removesKeys, "Remove its keys");
  addAction(*sub, "remove", "Remove a feed and its cached files", feed_, remove)
      ->add_option("NAME", feed_.name, "Its name")
      ->required()
      ->type_name("");
}

void CommandGrammar::addAnalytics(CLI::App& app) {
  using enum AnalyticsCommand::Action;
  CLI::App* const sub =
      app.add_subcommand("analytics", "Print the use of the widget, which is recorded on this machine only");
  sub->require_subcommand(0, 1)->fallthrough();
  sub->add_flag("--json", analytics_.json, "Print it as a JSON object");
  sub->preparse_callback([this](std::size_t) { command_ = analytics_; });
  sub->final_callback([this] {
    if (auto* const chosen = std::get_if<AnalyticsCommand>(&command_)) chosen->json = analytics_.json;
  });
  addAction(*sub, "list", "Print all records, the oldest first", analytics_, list);
  addAction(*sub, "on", "Turn recording on, as it is at first", analytics_, on);
  addAction(*sub, "off", "Turn recording off", analytics_, off);
  addAction(*sub, "clear", "Delete all records", analytics_, clear);
}

void CommandGrammar::addOpen(CLI::App& app) {
  CLI::App* const sub =
      app.add_subcommand("open", "Print the content of a row, as the companion application gets it");
  sub->add_option("FILE", open_.file, "An activity record, compressed or not, or an incident list")
      ->required()
      ->type_name("");
  sub->callback([this] { command_ = open_; });
}

void CommandGrammar::addRender(CLI::App& app) {
  CLI::App* const sub = app.add_subcommand("render", "Draw the widget into a picture");
  sub->add_option("-o,--output", render_.output, "The file: .png, .svg or .pdf")
      ->type_name("FILE")
      ->required();
  sub->add_flag("--expanded", render_.expanded, "Every row, not just the one of the compact widget");
  addNumber<double>(*sub, "--scale", render_.scale, {0.5, 8, "0.5 to 8"}, "Pixels a point");
  const auto takeTextSize = [this](const std::string& name) {
    const auto category = ui::textSizeCategoryNamed(name);
    render_.textSize = category.value_or(render_.textSize);
    return category.has_value();
  };
  addChecked(*sub, "--text-size", takeTextSize, textSizeNames() + "; usually L", "none of " + textSizeNames())
      ->type_name("SIZE");
  sub->add_flag("--dark", render_.dark, "On a dark background");
  // Insets and the artwork column take 105 points; below the lower limit no word would fit.
  addNumber<double>(*sub, "--width", render_.width, {200, 2000, "200 to 2000"}, "Points");
  sub->callback([this] { command_ = render_; });
}

void CommandGrammar::addSimulate(CLI::App& app) {
  CLI::App* const sub =
      app.add_subcommand("simulate", "Run a scenario in virtual time and print its transcript");
  CLI::Option* const scenario =
      sub->add_option("SCENARIO", simulate_.scenario, "A simulated world and the host's steps, in JSON")
          ->type_name("");
  sub->add_option("-o,--output", simulate_.output,
                  "Write the output to a file; with --show also a picture: .png, .svg or .pdf")
      ->type_name("FILE");
  addNumber<double>(*sub, "--until", simulate_.until, {0, 1e12, "0 (the start) to 1e12"},
                    "End at this time in seconds")
      ->type_name("SECONDS");
  addNumber<std::size_t>(*sub, "--step", simulate_.step, {0, 1'000'000'000, "0 (the first) to 1000000000"},
                         "End after this step");
  sub->add_flag("--show", simulate_.show, "Print the widget at the end instead of the transcript");
  sub->add_option("--diff", simulate_.compared, "Tell where two transcripts part; runs nothing")
      ->expected(2)
      ->excludes(scenario)
      ->type_name("A B");
  sub->callback([this] {
    if (simulate_.scenario.empty() && simulate_.compared.empty()) throw CLI::RequiredError("SCENARIO");
    command_ = simulate_;
  });
}

}  // namespace linewatch::app
