#include "app/command_line.h"

#include <charconv>
#include <chrono>
#include <regex>
#include <system_error>
#include <type_traits>
#include <utility>

#include <CLI/CLI.hpp>

#include "app/shell_words.h"
#include "feeds/http/http_fetcher.h"
#include "shared/failure.h"

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
    "It takes the common options too, among them --state-dir, --now and --locale: linewatch --help lists "
    "them.";

/// What is wrong with a value: an error of the option that it was given to.
std::string isNot(const std::string& text, const std::string& expected) {
  return '"' + text + "\" is " + expected;
}

/// An option whose values `take` takes, or refuses by giving false.
template <class Take>
CLI::Option* addChecked(CLI::App& app, const std::string& name, const Take& take, const std::string& about,
                        const std::string& expected) {
  const auto check = [=](const std::string& text) {
    if (!take(text)) throw CLI::ValidationError(name, isNot(text, expected));
  };
  return app.add_option_function<std::string>(name, check, about);
}

bool addPreference(const std::string& text, CommonOptions& options) {
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos || equals == 0) return false;
  const std::string value = text.substr(equals + 1);
  const bool isTruth = value == "true" || value == "false";
  options.preferences.insert_or_assign(text.substr(0, equals),
                                       isTruth ? Value(value == "true") : Value(value));
  return true;
}

template <class Number>
struct NumberRange {
  Number least, most;
  const char* text;
};

/// An option that takes the numbers of a range.
template <class Number>
CLI::Option* addNumber(CLI::App& app, const std::string& name, Number& number,
                       const NumberRange<Number>& range, const std::string& about) {
  const auto take = [=, &number](const std::string& text) {
    Number given{};
    const auto [end, trouble] = std::from_chars(text.data(), text.data() + text.size(), given);
    // What is no number at all lies in no range either.
    const bool fits = trouble == std::errc() && end == text.data() + text.size() && given >= range.least &&
                      given <= range.most;
    if (fits) number = given;
    return fits;
  };
  const std::string kind = std::is_integral_v<Number> ? "whole number" : "number";
  return addChecked(app, name, take, about + ", " + range.text, "no " + kind + " from " + range.text)
      ->type_name("N");
}

/// An option for a place that a feed can be read from.
template <class Text>
CLI::Option* addLocation(CLI::App& app, const std::string& name, Text& location, const std::string& about) {
  const auto take = [&location](const std::string& text) {
    const bool fits = isHttpURL(text) || text.starts_with("file://") ||
                      (!text.empty() && text.find("://") == std::string::npos);
    if (fits) location = text;
    return fits;
  };
  return addChecked(app, name, take, about, "no file, and no address that starts with http:// or https://")
      ->type_name("PLACE");
}

void addShownLines(CLI::App& app, CommonOptions& options) {
  addLocation(app, "--gtfs", options.gtfs, "Timetable for this run: a GTFS folder, zip or URL");
  addLocation(app, "--alerts", options.alerts, "Its GTFS-Realtime service alerts: a file or URL");
  app.add_option("--favorite", options.favorites, "A favourite for this run, by its route id; may come again")
      ->type_name("ROUTE_ID")
      ->expected(1)
      ->take_all();
}

void addSurroundings(CLI::App& app, CommonOptions& options) {
  const auto takeTime = [&options](const std::string& text) {
    return (options.now = parseTime(text)).has_value();
  };
  addChecked(app, "--now", takeTime, "The time to take for now, e.g. 2026-11-24T08:00:00Z",
             "no time like 2026-11-24T08:00:00Z")
      ->type_name("TIME");
  addNumber<std::uint64_t>(app, "--max-rows", options.maxRows, {0, 1'000'000, "0 (no limit) to 1000000"},
                           "Rows of the expanded list");
  const auto takeLocale = [&options](const std::string& text) {
    return (options.locale = UserLocale::parse(text)).has_value();
  };
  addChecked(app, "--locale", takeLocale, "Language and region, e.g. de-CH",
             "no language, as en or de-CH are")
      ->type_name("TAG");
  app.add_option("--state-dir", options.stateDir, "Folder of all saved state, in place of the XDG folders")
      ->type_name("DIR");
}

void addPreferences(CLI::App& app, CommonOptions& options) {
  const auto take = [&options](const std::vector<std::string>& texts) {
    for (const std::string& text : texts) {
      if (!addPreference(text, options))
        throw CLI::ValidationError("--preference", isNot(text, "no KEY=VALUE"));
    }
  };
  app.add_option_function<std::vector<std::string>>(
         "--preference", take,
         "A preference for this run, e.g. Rova.LineWatch.internal.injectFakeIncidents=true; may come again")
      ->type_name("KEY=VALUE")
      ->expected(1)
      ->take_all();
}

void addCommonOptions(CLI::App& app, CommonOptions& options) {
  const std::string usualGroup = app.option_defaults()->get_group();
  app.option_defaults()->group("Common options");
  addShownLines(app, options);
  addSurroundings(app, options);
  addPreferences(app, options);
  app.add_flag("-v,--verbose", options.verbose, "Say what is done, on standard error");
  app.option_defaults()->group(usualGroup);
}

std::string textSizeNames() {
  std::string names;
  for (const std::string_view name : ui::kTextSizeCategoryNames) {
    if (!names.empty()) names += ", ";
    names += name;
  }
  return names;
}

/// The subcommands, each with the command that it fills in.
struct Grammar {
  explicit Grammar(CLI::App& app) {
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

  Command command = PanelCommand{};

 private:
  /// A subcommand that, when it is used, is the command that `fields` became.
  template <class T>
  CLI::App* addAction(CLI::App& app, const std::string& name, const std::string& about, T& fields,
                      typename T::Action action) {
    return app.add_subcommand(name, about)->callback([this, &fields, action] {
      fields.action = action;
      command = fields;
    });
  }

  void addPanel(CLI::App& app) {
    CLI::App* const sub = app.add_subcommand("panel", "Show the panel; without a display, print the list");
    sub->add_option_function<std::string>(
           "--companion",
           [this](const std::string& text) {
             auto words = shellWords(text);
             if (!words) throw CLI::ValidationError("--companion", sentenceOf(words.error()));
             panel_.companion = std::move(*words);
           },
           "A command to call with what a row opens, in place of the program's own windows")
        ->type_name("COMMAND")
        ->envname("LINEWATCH_COMPANION");
    sub->callback([this] { command = panel_; });
  }
  void addShow(CLI::App& app) {
    CLI::App* const sub = app.add_subcommand("show", "Print the list once");
    sub->add_flag("--expanded", show_.expanded, "Every row, not just the one of the compact widget");
    sub->add_flag("--json", show_.json, "Print the list as a JSON object");
    sub->callback([this] { command = show_; });
  }
  void addFavorites(CLI::App& app) {
    using enum FavoritesCommand::Action;
    CLI::App* const sub = app.add_subcommand("favorites", "List, add or remove favourite lines");
    sub->require_subcommand(0, 1)->fallthrough();
    // A subcommand's callback runs after its parent's, so the list is what is left when there is none.
    sub->preparse_callback([this](std::size_t) { command = favorites_; });
    addAction(*sub, "list", "List the favourites", favorites_, list);
    struct Row {
      const char *name, *about;
      FavoritesCommand::Action action;
    };
    for (const auto& [name, about, action] : {Row{"add", "Add lines, by name or route id", add},
                                              Row{"remove", "Remove lines, by name or route id", remove}}) {
      addAction(*sub, name, about, favorites_, action)
          ->add_option("LINE", favorites_.lines, "A route id, FEED:ROUTE_ID, or a name that one line has")
          ->required()
          ->type_name("");
    }
  }
  void addLines(CLI::App& app) {
    CLI::App* const sub = app.add_subcommand("lines", "Find lines by name, number or agency");
    sub->add_option("QUERY", lines_.query,
                    "Beginnings of words, or parts of three letters or more; none: all lines")
        ->type_name("");
    sub->callback([this] { command = lines_; });
  }
  void addFeed(CLI::App& app) {
    using enum FeedCommand::Action;
    CLI::App* const sub = app.add_subcommand("feed", "List, add or remove feeds");
    sub->require_subcommand(0, 1)->fallthrough();
    sub->preparse_callback([this](std::size_t) { command = feed_; });
    addAction(*sub, "list", "List the feeds", feed_, list);
    CLI::App* const adding = addAction(*sub, "add", "Add a feed", feed_, add);
    adding->add_option("NAME", feed_.name, "What to call it")->required()->type_name("");
    addLocation(*adding, "--gtfs", feed_.gtfs, "Its timetable: a GTFS folder, zip or URL")->required();
    addLocation(*adding, "--alerts", feed_.alerts, "Its service alerts: a file or URL")->required();
    addAction(*sub, "remove", "Remove a feed and what is kept of it", feed_, remove)
        ->add_option("NAME", feed_.name, "What it is called")
        ->required()
        ->type_name("");
  }
  void addAnalytics(CLI::App& app) {
    using enum AnalyticsCommand::Action;
    CLI::App* const sub = app.add_subcommand(
        "analytics", "Print what the widget has recorded of its use, on this machine alone");
    sub->require_subcommand(0, 1)->fallthrough();
    sub->add_flag("--json", analytics_.json, "Print it as a JSON object");
    sub->preparse_callback([this](std::size_t) { command = analytics_; });
    sub->final_callback([this] {
      if (auto* const chosen = std::get_if<AnalyticsCommand>(&command)) chosen->json = analytics_.json;
    });
    addAction(*sub, "list", "Print all of it, oldest first", analytics_, list);
    addAction(*sub, "on", "Record, which is how it is at first", analytics_, on);
    addAction(*sub, "off", "Record nothing more", analytics_, off);
    addAction(*sub, "clear", "Forget all that was recorded", analytics_, clear);
  }
  void addOpen(CLI::App& app) {
    CLI::App* const sub = app.add_subcommand("open", "Print what a row hands to the companion application");
    sub->add_option("FILE", open_.file, "An activity record, compressed or not, or an incident list")
        ->required()
        ->type_name("");
    sub->callback([this] { command = open_; });
  }

  void addRender(CLI::App& app) {
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
    addChecked(*sub, "--text-size", takeTextSize, textSizeNames() + "; usually L",
               "none of " + textSizeNames())
        ->type_name("SIZE");
    sub->add_flag("--dark", render_.dark, "On a dark background");
    // Insets and the artworks' column take 105 of it: with less than this no word has room.
    addNumber<double>(*sub, "--width", render_.width, {200, 2000, "200 to 2000"}, "Points");
    sub->callback([this] { command = render_; });
  }
  void addSimulate(CLI::App& app) {
    CLI::App* const sub =
        app.add_subcommand("simulate", "Run a scenario in virtual time and print its transcript");
    sub->add_option("SCENARIO", simulate_.scenario, "A world and the steps of a host, in JSON")
        ->required()
        ->type_name("");
    sub->add_option("-o,--output", simulate_.output, "Write the transcript to a file")->type_name("FILE");
    sub->callback([this] { command = simulate_; });
  }

  PanelCommand panel_;
  ShowCommand show_;
  FavoritesCommand favorites_;
  LinesCommand lines_;
  FeedCommand feed_;
  AnalyticsCommand analytics_;
  OpenCommand open_;
  RenderCommand render_;
  SimulateCommand simulate_;
};

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

std::optional<int> number(const std::ssub_match& digits) {
  return digits.matched ? std::optional(std::stoi(digits.str())) : std::nullopt;
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
  Grammar grammar(app);
  app.footer(kFooter);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return reportOf(app, error);
  }
  return CommandLine{std::move(options), std::move(grammar.command)};
}

std::optional<Date> parseTime(const std::string& text) {
  static const std::regex kTime(
      R"((\d{4})-(\d\d)-(\d\d)[T ](\d\d):(\d\d)(?::(\d\d)(?:\.\d+)?)?(?:Z|([+-])(\d\d):?(\d\d)))");
  std::smatch parts;
  if (!std::regex_match(text, parts, kTime)) return std::nullopt;
  const auto part = [&](std::size_t index) { return number(parts[index]).value_or(0); };
  const std::chrono::year_month_day day{std::chrono::year(part(1)),
                                        std::chrono::month(static_cast<unsigned>(part(2))),
                                        std::chrono::day(static_cast<unsigned>(part(3)))};
  if (!day.ok() || part(4) > 23 || part(5) > 59 || part(6) > 60 || part(8) > 23 || part(9) > 59)
    return std::nullopt;
  const auto local = std::chrono::sys_days(day) + std::chrono::hours(part(4)) +
                     std::chrono::minutes(part(5)) + std::chrono::seconds(part(6));
  const auto offset = std::chrono::hours(part(8)) + std::chrono::minutes(part(9));
  return Date(parts[7] == "-" ? local + offset : local - offset);
}

}  // namespace linewatch::app
