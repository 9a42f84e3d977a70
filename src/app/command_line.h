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
#include "ui/text_style.h"

namespace linewatch::app {

/// What every command takes.
struct CommonOptions {
  /// A run without saved state: a timetable and its alerts from a file or URL, and the favourites by route
  /// id.
  std::optional<std::string> gtfs;
  std::optional<std::string> alerts;
  std::vector<std::string> favorites;
  /// The time to take for now.
  std::optional<Date> now;
  /// Rows of the expanded list; 0: no limit.
  std::uint64_t maxRows = 0;
  std::optional<UserLocale> locale;
  std::optional<std::string> stateDir;
  bool verbose = false;
  /// Values in front of the saved preferences, for this run.
  Dictionary preferences;
};

struct ShowCommand {
  bool expanded = false;
  bool json = false;
};

struct FavoritesCommand {
  enum class Action { list, add, remove };
  Action action = Action::list;
  std::vector<std::string> lines;
};

struct LinesCommand {
  /// Words; none: all lines.
  std::vector<std::string> query;
};

struct FeedCommand {
  enum class Action { list, add, remove };
  Action action = Action::list;
  std::string name;
  std::string gtfs;
  std::string alerts;
};

/// What the widget has recorded of its use.
struct AnalyticsCommand {
  enum class Action { list, on, off, clear };
  Action action = Action::list;
  bool json = false;
};

struct OpenCommand {
  std::string file;
};

struct SimulateCommand {
  std::string scenario;
  /// Where the transcript goes; empty: standard output.
  std::string output;
};

/// Draws the widget into a file.
struct RenderCommand {
  std::string output;
  bool expanded = false;
  /// Pixels a point.
  double scale = 2;
  ui::TextSizeCategory textSize = ui::kDefaultTextSizeCategory;
  bool dark = false;
  /// Points.
  double width = 359;
};

/// Shows the panel.
struct PanelCommand {
  /// The words of what is called in place of the program's own windows; empty: nothing.
  std::vector<std::string> companion;
};

using Command = std::variant<PanelCommand, ShowCommand, FavoritesCommand, LinesCommand, FeedCommand,
                             AnalyticsCommand, OpenCommand, SimulateCommand, RenderCommand>;

struct CommandLine {
  CommonOptions common;
  Command command;
};

/// The report comes instead when there is nothing to run: help, the version, or what is wrong with the usage.
std::variant<CommandLine, Report> parseCommandLine(int argc, const char* const* argv);

/// A time as ISO 8601 writes it, with Z or an offset ("2026-11-24T08:00:00Z", "2026-11-24T09:00+01:00"), or
/// none.
std::optional<Date> parseTime(const std::string& text);

}  // namespace linewatch::app
