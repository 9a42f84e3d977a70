#include "app/command_grammar.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <variant>

#include "app/checked_options.h"
#include "app/feed_options.h"
#include "settings/setting_table.h"

namespace linewatch::app {

namespace {

/// "XS, S, M".
std::string listed(std::span<const std::string_view> all) {
  std::string names;
  for (const std::string_view name : all) {
    if (!names.empty()) names += ", ";
    names += name;
  }
  return names;
}

std::string textSizeNames() { return listed(ui::kTextSizeCategoryNames); }
std::string statusFormatNames() { return listed(kStatusFormatNames); }

/// The settings, for the help: a line for each, and its values.
std::string settingsHelp() {
  std::string text = "Settings:\n";
  for (const Setting& setting : settingTable()) {
    text += "  " + std::string(setting.key) + std::string(12 - setting.key.size(), ' ') +
            std::string(setting.about) + "\n              " + std::string(setting.allowed) + "; usually " +
            (setting.defaultText.empty() ? "empty" : std::string(setting.defaultText)) + "\n";
  }
  return text;
}

/// Adds --watch. `does`: what the command does once without it.
void addWatch(CLI::App& app, bool& watches, const std::string& does) {
  app.add_flag("--watch", watches,
               "Go on, and " + does + " again when something has changed; SIGUSR1 makes it ask at once");
}

}  // namespace

CommandGrammar::CommandGrammar(CLI::App& app) {
  addPanel(app);
  addShow(app);
  addStatus(app);
  addFavorites(app);
  addLines(app);
  addFeed(app);
  addAnalytics(app);
  addSettings(app);
  addNotify(app);
  addMute(app);
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

/// Adds the option that replaces the setting of this name for the run.
CLI::Option* CommandGrammar::addSettingOption(CLI::App& app, const std::string& key,
                                              std::optional<std::string>& value, const std::string& about) {
  const Setting& setting = *settingWithKey(key);
  const auto check = [&setting, &value, key](const std::string& text) {
    if (!setting.isAllowed(text)) throw CLI::ValidationError("--" + key, setting.refusal(text));
    value = text;
  };
  return app.add_option_function<std::string>("--" + key, check, about);
}

/// Adds --json to a command whose actions of these names print a list.
template <class T>
void CommandGrammar::addJson(CLI::App& app, bool& json, const char* names,
                             std::initializer_list<typename T::Action> printing) {
  app.add_flag("--json", json, "Print them as a JSON object");
  const std::vector<typename T::Action> actions(printing);
  app.final_callback([this, &json, names, actions] {
    auto* const chosen = std::get_if<T>(&command_);
    if (!chosen || !json) return;
    if (std::ranges::find(actions, chosen->action) == actions.end())
      throw CLI::ValidationError("--json", std::string("only ") + names + " can print JSON");
    chosen->json = true;
  });
}

void CommandGrammar::addPanel(CLI::App& app) {
  CLI::App* const sub = app.add_subcommand("panel", "Show the panel; without a display, print the list");
  addSettingOption(*sub, "companion", panel_.companion,
                   "A command to run with the content of a tapped row, instead of a window")
      ->type_name("COMMAND")
      ->envname("LINEWATCH_COMPANION");
  addSettingOption(*sub, "refresh", panel_.refresh, "How often it asks for news, 30s to 30m; usually 2m")
      ->type_name("TIME");
  sub->add_option("--record", panel_.record,
                  "Keep the last hour in a file that simulate runs; without keys and addresses of feeds")
      ->type_name("FILE");
  sub->add_flag("--anonymous", panel_.isAnonymous,
                "Replace names and texts in what is recorded; equal ones stay equal");
  sub->add_flag("--example", panel_.showsExample, "Show the made-up city until there is a feed");
  sub->add_flag("--hidden", panel_.isHidden, "Start without the window; starting it again shows it");
  sub->callback([this] { command_ = panel_; });
}

void CommandGrammar::addShow(CLI::App& app) {
  CLI::App* const sub = app.add_subcommand("show", "Print the list once");
  sub->add_flag("--expanded", show_.expanded, "Every row, not just the one of the compact widget");
  sub->add_flag("--upcoming", show_.upcoming, "Print what begins within 7 days instead of the list");
  sub->add_flag("--json", show_.json, "Print feeds, lines, incidents and rows as a JSON object");
  addWatch(*sub, show_.watches, "print it");
  sub->callback([this] { command_ = show_; });
}

void CommandGrammar::addStatus(CLI::App& app) {
  CLI::App* const sub = app.add_subcommand("status", "Print one line that says whether the lines run");
  const std::string names = statusFormatNames();
  const auto takeFormat = [this](const std::string& name) {
    const auto* const found = std::ranges::find(kStatusFormatNames, name);
    if (found == kStatusFormatNames.end()) return false;
    status_.format = static_cast<StatusFormat>(found - kStatusFormatNames.begin());
    return true;
  };
  addChecked(*sub, "--format", takeFormat, "What reads it: " + names + "; usually plain", "none of " + names)
      ->type_name("FORMAT");
  addWatch(*sub, status_.watches, "print the line");
  sub->callback([this] {
    if (status_.watches && !isStream(status_.format))
      throw CLI::ValidationError("--watch",
                                 std::string(kStatusFormatNames[static_cast<std::size_t>(status_.format)]) +
                                     " runs the command again at an interval of its own");
    command_ = status_;
  });
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
  CLI::App* const sub = app.add_subcommand("favorites", "List, add, remove or move favourite lines");
  sub->require_subcommand(0, 1)->fallthrough();
  // A subcommand's callback runs after this one, and replaces this command.
  sub->preparse_callback([this](std::size_t) { command_ = favorites_; });
  addJson<FavoritesCommand>(*sub, favorites_.json, "list", {list});
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
  addMove(*sub);
}

void CommandGrammar::addMove(CLI::App& favorites) {
  using enum FavoritesCommand::Action;
  CLI::App* const moving =
      addAction(favorites, "move", "Move a line, as the rows have this order", favorites_, move);
  const auto takeLine = [this](const std::string& line) { favorites_.lines = {line}; };
  moving->add_option_function<std::string>("LINE", takeLine, "A favourite, by name or route id")
      ->required()
      ->type_name("");
  moving->add_option("PLACE", favorites_.place, "Its new place; 1 is the first")
      ->required()
      ->check(CLI::Range(std::size_t{1}, std::size_t{1'000'000}))
      ->type_name("");
}

void CommandGrammar::addLines(CLI::App& app) {
  CLI::App* const sub = app.add_subcommand("lines", "Find lines by name, number or agency");
  sub->add_option("QUERY", lines_.query,
                  "The beginnings of words, or any three letters or more; without it all lines are listed")
      ->type_name("");
  sub->add_flag("--json", lines_.json, "Print them as a JSON object");
  sub->callback([this] { command_ = lines_; });
}

/// Adds the words to search for.
CLI::App* CommandGrammar::addFeedSearch(CLI::App& app) {
  const auto take = [this](const std::vector<std::string>& words) {
    feed_.name.clear();
    for (const std::string& word : words) feed_.name += (feed_.name.empty() ? "" : " ") + word;
  };
  app.add_option_function<std::vector<std::string>>(
         "WORDS", take, "A city, agency, region or country; with --gtfs and --alerts the feed's name")
      ->required()
      ->type_name("");
  return &app;
}

void CommandGrammar::addFeed(CLI::App& app) {
  using enum FeedCommand::Action;
  CLI::App* const sub = app.add_subcommand("feed", "List, add, change or remove feeds");
  sub->require_subcommand(0, 1)->fallthrough();
  sub->preparse_callback([this](std::size_t) { command_ = feed_; });
  addJson<FeedCommand>(*sub, feed_.json, "list and find", {list, find});
  addAction(*sub, "list", "List the feeds", feed_, list);
  addFeedSearch(*addAction(*sub, "find", "Find a city's feed in the public catalogue", feed_, find));
  CLI::App* const adding = sub->add_subcommand("add", "Add the feed of a city, or one at addresses of yours");
  addFeedSearch(*adding)
      ->add_option("--name", feed_.newName, "Its name, instead of one made from the agency's")
      ->type_name("NAME");
  addLocationOptions(*adding, feed_.options,
                     {.gtfs = "Its timetable: a GTFS folder, zip or URL; may be repeated",
                      .alerts = "Its service alerts: a file or URL; may be repeated"});
  adding->callback([this] {
    if (feed_.options.gtfs.empty() != feed_.options.alerts.empty())
      throw CLI::RequiredError(feed_.options.gtfs.empty() ? "--gtfs" : "--alerts");
    feed_.action = add;
    command_ = feed_;
  });
  addKeyOptions(*adding, feed_.options);
  CLI::App* const changing = addAction(*sub, "key", "Change or ask for the key of a feed", feed_, key);
  changing->add_option("NAME", feed_.name, "Its name")->required()->type_name("");
  addKeyOptions(*changing, feed_.options);
  changing->add_flag("--remove", feed_.removesKeys, "Remove its keys");
  addAction(*sub, "update", "Fetch a feed again, however long it takes to come", feed_, update)
      ->add_option("NAME", feed_.name, "Its name; without it every feed")
      ->type_name("");
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

void CommandGrammar::addSettings(CLI::App& app) {
  CLI::App* const sub = app.add_subcommand("settings", "Print the settings, or change one");
  CLI::Option* const key =
      sub->add_option("KEY", settings_.key, "The setting; without it all are listed")->type_name("");
  sub->add_option("VALUE", settings_.value, "Its new value; without it the present one is printed")
      ->type_name("");
  sub->add_flag("--unset", settings_.unsets, "Remove the setting from the file, so that the default holds")
      ->needs(key);
  sub->add_flag("--json", settings_.json, "Print them as a JSON object");
  sub->footer(settingsHelp() + "\n" + sub->get_footer());
  sub->callback([this] { command_ = settings_; });
}

void CommandGrammar::addNotify(CLI::App& app) {
  CLI::App* const sub =
      app.add_subcommand("notify", "Choose which lines the panel notifies you of, and when");
  CLI::Option* const line =
      sub->add_option("LINE", notify_.line, "A favourite; without it all are listed")->type_name("");
  sub->add_option("WHEN", notify_.when, "on, off, or hours such as \"weekdays 7 to 9, 17 to 19\"")
      ->type_name("");
  sub->add_option("--from", notify_.from, "The least severity; incidents without one are always told")
      ->check(CLI::IsMember({"info", "warning", "severe"}).description(""))
      ->type_name("info|warning|severe")
      ->needs(line);
  sub->callback([this] { command_ = notify_; });
}

void CommandGrammar::addMute(CLI::App& app) {
  CLI::App* const sub = app.add_subcommand("mute", "Silence the notifications of a line or an incident");
  sub->add_option("LINE|INCIDENT", mute_.subject, "A favourite, or words from the title of an incident")
      ->required()
      ->type_name("");
  sub->add_option("FOR", mute_.duration, "A time from 1m to 30d such as 90m, 2h or 1d, or off; usually 24h")
      ->type_name("");
  sub->callback([this] { command_ = mute_; });
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
  addWatch(*sub, render_.watches, "write the file");
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
