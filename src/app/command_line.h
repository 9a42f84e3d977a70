#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "app/report.h"
#include "app/status_formats.h"
#include "localization/user_locale.h"
#include "shared/date.h"
#include "shared/value.h"
#include "storage/stored_feeds.h"
#include "ui/text_style.h"

namespace linewatch {
class UserSettings;
}

namespace linewatch::app {

/// The options for a feed's locations and keys.
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
  /// The keys of both documents, and keys that replace them for one document.
  Keys keys;
  Keys gtfsKeys;
  Keys alertsKeys;
};

/// The options of all commands.
struct CommonOptions {
  /// The feed, and the route ids of the favourites, of a run without saved state.
  FeedOptions feed;
  std::vector<std::string> favorites;
  /// The time at which the run's clock starts.
  std::optional<Date> now;
  /// The largest number of rows of the expanded list; 0: no limit.
  std::uint64_t maxRows = 0;
  std::optional<UserLocale> locale;
  std::optional<std::string> stateDir;
  /// The catalogue of feeds, a CSV file or URL; empty for that of the settings.
  std::string catalogue = {};
  bool verbose = false;
  /// Preferences of this run; they replace the saved ones.
  Dictionary preferences;
  /// The settings in force, which the program sets before it runs the command; null until then.
  std::shared_ptr<UserSettings> settings = {};
};

/// Whether feed and favourites are on the command line. Such a run reads and saves nothing of the user's.
bool isWithoutSavedState(const CommonOptions& options);

struct ShowCommand {
  bool expanded = false;
  bool json = false;
  /// Print the incidents of the next days instead of the list.
  bool upcoming = false;
  /// Go on, and print it again whenever it changes.
  bool watches = false;
};

/// Prints a line for a status bar.
struct StatusCommand {
  StatusFormat format = StatusFormat::plain;
  /// Go on, and print it again whenever it changes.
  bool watches = false;
};

struct FavoritesCommand {
  enum class Action { list, add, remove, move };
  Action action = Action::list;
  /// For `list`: print a JSON object.
  bool json = false;
  std::vector<std::string> lines = {};
  /// For `move`: the place among the favourites, counted from 1.
  std::size_t place = 1;
  /// For `add`: "all", "none" or stop ids with commas between them; "0", "1" or "both". Absent if the choice
  /// stays.
  std::optional<std::string> stops = {}, direction = {};
};

struct LinesCommand {
  /// Words to search for; empty: all lines.
  std::vector<std::string> query;
  bool json = false;
};

struct FeedCommand {
  enum class Action { list, find, add, key, update, remove };
  Action action = Action::list;
  /// The feed's name, empty for `update` of every feed; for `find`, and for `add` without locations, the
  /// words to search for.
  std::string name;
  FeedOptions options;
  /// For `add` by a search: the feed's name; empty: one made from the agency's.
  std::string newName = {};
  /// For `list` and `find`: print a JSON object.
  bool json = false;
  /// For `key`: remove the feed's keys.
  bool removesKeys = false;
};

/// Prints or clears the recorded use of the widget, or turns recording on or off.
struct AnalyticsCommand {
  enum class Action { list, on, off, clear };
  Action action = Action::list;
  bool json = false;
};

/// Prints the settings or one of them, or changes one.
struct SettingsCommand {
  /// Empty: all settings.
  std::string key;
  /// The new value; absent: print the present one.
  std::optional<std::string> value = {};
  /// Remove the value from the file.
  bool unsets = false;
  bool json = false;
};

/// Lists the lines with notifications, or changes those of one.
struct NotifyCommand {
  /// Empty: list all.
  std::string line;
  /// "on", "off" or the words of hours; empty: as they are, or always for a line without notifications.
  std::vector<std::string> when = {};
  /// The least severity: "info", "warning" or "severe"; absent: as it is.
  std::optional<std::string> from = {};
};

/// Silences the notifications of a line or an incident for a while.
struct MuteCommand {
  /// A line, or words from the title of an incident that was notified.
  std::string subject;
  /// "off", or a time such as "2h".
  std::string duration = "24h";
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
  /// Go on, and write the file again whenever the list changes.
  bool watches = false;
};

/// Shows the panel.
struct PanelCommand {
  /// The texts of the settings of these names; absent: the user's settings.
  std::optional<std::string> companion = {};
  std::optional<std::string> refresh = {};
  /// The file for a scenario of what happened; empty: none.
  std::string record;
  /// Scenarios have stand-ins for names and texts.
  bool isAnonymous = false;
  /// Show the made-up city until there is a feed, also at the first start.
  bool showsExample = false;
  /// Start without the window, which another start or the bus shows.
  bool isHidden = false;
};

/// A word that can be put on a command line, and what it means.
struct CompletedWord {
  std::string word;
  std::string about;
};

/// Prints what can stand for the last word of a command line that is being typed. Shells call it.
struct CompleteCommand {
  enum class Names { none, lines, favorites, feeds };
  /// The typed beginning of the word.
  std::string start;
  std::vector<CompletedWord> words = {};
  /// The names that can stand there too.
  Names names = Names::none;
};

using Command = std::variant<PanelCommand, ShowCommand, StatusCommand, FavoritesCommand, LinesCommand,
                             FeedCommand, AnalyticsCommand, SettingsCommand, NotifyCommand, MuteCommand,
                             OpenCommand, SimulateCommand, RenderCommand, CompleteCommand>;

struct CommandLine {
  CommonOptions common;
  Command command;
};

/// The parsed command line, or a report if there is nothing to run: help, the version, or a usage error.
std::variant<CommandLine, Report> parseCommandLine(int argc, const char* const* argv);

}  // namespace linewatch::app
