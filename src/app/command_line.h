#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "app/report.h"
#include "localization/user_locale.h"
#include "shared/date.h"
#include "shared/value.h"
#include "storage/stored_feeds.h"
#include "ui/text_style.h"

namespace linewatch::app {

/// The options that name the locations of a feed and where its keys go.
struct FeedOptions {
  struct Keys {
    std::vector<FeedKeys::Field> headers;
    std::vector<FeedKeys::Field> query;
    std::string command;

    bool areGiven() const { return !headers.empty() || !query.empty() || !command.empty(); }
  };

  /// Files or URLs.
  std::vector<std::string> gtfs;
  std::vector<std::string> alerts;
  /// Keys for both documents, and those that one document has instead.
  Keys keys;
  Keys gtfsKeys;
  Keys alertsKeys;
};

/// Options that every command takes.
struct CommonOptions {
  /// For a run without saved state: its feed, and the route ids of the favourites.
  FeedOptions feed;
  std::vector<std::string> favorites;
  /// The time to use instead of the present time.
  std::optional<Date> now;
  /// The most rows of the expanded list; 0: no limit.
  std::uint64_t maxRows = 0;
  std::optional<UserLocale> locale;
  std::optional<std::string> stateDir;
  bool verbose = false;
  /// Preferences that override the saved ones in this run.
  Dictionary preferences;
};

struct ShowCommand {
  bool expanded = false;
  bool json = false;
  /// Show what begins in the next days instead of the list.
  bool upcoming = false;
};

struct FavoritesCommand {
  enum class Action { list, add, remove };
  Action action = Action::list;
  std::vector<std::string> lines;
  /// For `add`: "all", "none" or ids of stops with commas between, and "0", "1" or "both". Absent: as before.
  std::optional<std::string> stops = {}, direction = {};
};

struct LinesCommand {
  /// Words to search for; empty: all lines.
  std::vector<std::string> query;
};

struct FeedCommand {
  enum class Action { list, add, key, remove };
  Action action = Action::list;
  std::string name;
  FeedOptions options;
  /// `key`: the feed needs no keys any more.
  bool removesKeys = false;
};

/// Prints or clears the recorded use of the widget, or turns recording on or off.
struct AnalyticsCommand {
  enum class Action { list, on, off, clear };
  Action action = Action::list;
  bool json = false;
};

struct OpenCommand {
  std::string file;
};

/// Runs a scenario, or compares two transcripts.
struct SimulateCommand {
  std::string scenario;
  /// The output's file; empty: standard output.
  std::string output;
  /// Seconds from the scenario's start at which the run ends; absent: at the end of the scenario.
  std::optional<double> until = {};
  /// The last step, counted from 0.
  std::optional<std::size_t> step = {};
  /// Print the widget at the end of the run instead of the transcript.
  bool show = false;
  /// Two files; empty: nothing to compare.
  std::vector<std::string> compared = {};
};

/// Draws the widget into a file.
struct RenderCommand {
  std::string output;
  bool expanded = false;
  /// Pixels per point.
  double scale = 2;
  ui::TextSizeCategory textSize = ui::kDefaultTextSizeCategory;
  bool dark = false;
  /// Points.
  double width = 359;
};

/// Shows the panel.
struct PanelCommand {
  /// The words of the user's companion command; empty: the program's own windows are used.
  std::vector<std::string> companion;
  /// How often the panel asks for an update.
  Seconds refresh{120};
  /// The file for a scenario of what happened; empty: none.
  std::string record;
  /// Scenarios have stand-ins for names and texts.
  bool isAnonymous = false;
};

using Command = std::variant<PanelCommand, ShowCommand, FavoritesCommand, LinesCommand, FeedCommand,
                             AnalyticsCommand, OpenCommand, SimulateCommand, RenderCommand>;

struct CommandLine {
  CommonOptions common;
  Command command;
};

/// The parsed command line. A report instead when there is nothing to run: help, the version, or an error in
/// the usage.
std::variant<CommandLine, Report> parseCommandLine(int argc, const char* const* argv);

}  // namespace linewatch::app
