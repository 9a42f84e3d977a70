#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/artwork.h"
#include "platform/device.h"
#include "platform/extension_context.h"
#include "platform/transit_line.h"
#include "shared/date.h"
#include "shared/error.h"
#include "shared/value.h"
#include "simulation/world/keyed_table.h"
#include "ui/layout/geometry.h"
#include "ui/text_style.h"

namespace linewatch::simulation {

using ui::LayoutDirection;

/// The host that shows the widget.
struct WorldHost {
  /// False: the widget's controller has no extension context.
  bool hosted = true;
  /// The largest size of each mode, in points.
  Size compact{359, 110};
  Size expanded{359, 440};
  WidgetDisplayMode activeMode = WidgetDisplayMode::compact;
  /// The size of the widget's view, in points, before the host resizes it.
  Size bounds{359, 110};
};

struct WorldFavorite {
  enum class Kind { line, place, route, region };

  Kind kind = Kind::line;
  /// The key of a line of the world. When it is absent or not in the world, a favourite of kind `line` is a
  /// saved line that is not known any more.
  std::optional<std::string> line;
  /// The name of a favourite of another kind.
  std::string name;
};

struct WorldSystem {
  std::uint64_t muid = 0;
  std::string name;
  std::optional<TransitArtworkDataSource> artwork;
};

struct WorldIncident {
  std::uint64_t muid = 0;
  OptionalText title;
  /// The row's text beside the title: the record's `summary`.
  OptionalText secondaryText;
  /// Seconds from the world's start. An absent start is in the past, an absent end in the future.
  std::optional<Seconds> start, end;
  bool blocking = false;

  OptionalText fullDescription;
  OptionalText messageForRoutePlanning, messageForRouteStepping, messageForNonRoutable;
  OptionalText infoURL;
  std::int64_t iconType = 0;
  std::optional<Seconds> created, lastUpdated;
  TransitIncidentEntities affectedEntities;
};

struct WorldLine {
  std::uint64_t muid = 0;
  std::string name;
  /// The key of a system. When it is absent or not in the world, the line has no system.
  std::optional<std::string> system;
  std::optional<TransitArtworkDataSource> artwork, modeArtwork, alternateArtwork;
  /// Keys of incidents, in the line's order; keys that are not in the world are left out.
  std::vector<std::string> incidents;
  /// False: the line has no map-item identifier and cannot be looked up.
  bool identifier = true;

  std::int64_t departureTimeDisplayStyle = 0;
  bool departuresAreVehicleSpecific = false;
  /// Six hexadecimal digits, or empty.
  std::string lineColorString;
  bool showVehicleNumber = false;
  std::string operatingHours;
};

/// How the transit service answers.
struct WorldService {
  enum class Answer {
    /// The items of `lines`; without these, of the lines asked for, in that order. Unknown lines are left
    /// out.
    lines,
    error,
    /// Neither items nor an error.
    nothing,
    /// Every line of the world, in the world's order, regardless of the lines asked for.
    all
  };

  /// The seconds from the submission of a look-up to its answer; absent: until the host lets it be answered.
  /// The answer shows the world as it is then.
  std::optional<Seconds> delay = Seconds(0.5);
  Answer answer = Answer::lines;
  /// The keys of the lines that the service knows at the moment, in the order in which it answers them.
  std::optional<std::vector<std::string>> lines;
  Error error{"Transit", 7, {}};
};

/// The kind of bundle of the running process.
enum class WorldBundle { plugin, application, other, none };

/// A value that restarts something each time it is assigned, even when it stays the same.
template <class T>
struct Restarting {
  T value{};
  std::uint32_t timesGiven = 0;

  Restarting& operator=(T given) {
    value = std::move(given);
    ++timesGiven;
    return *this;
  }
  bool operator==(const Restarting&) const = default;
};

/// The scripted world around the widget. A platform is made from a world and can change it while it runs.
struct World {
  /// The date at second 0: 2026-11-24T08:00:00Z.
  Date start{Seconds(1795507200)};
  /// How far the clock is set ahead, negative: back. Timers do not follow a clock that is set.
  Seconds clockOffset{0};

  /// A note for the reader of a scenario. Nothing depends on it, because texts are their keys.
  std::string locale = "en";
  LayoutDirection layoutDirection = LayoutDirection::leftToRight;
  /// Pixels per point.
  double scale = 2;
  ui::TextSizeCategory textSize = ui::kDefaultTextSizeCategory;
  /// The first random numbers, in this order. The next ones come from a generator that starts with `seed`.
  Restarting<std::vector<std::uint32_t>> random;
  Restarting<std::uint32_t> seed{1};

  WorldHost host;
  /// The values of the companion application's suite at the start and during a change of the world.
  Dictionary preferences;
  std::vector<WorldFavorite> favorites;
  /// Why the favourites cannot be read; absent when they can.
  std::optional<Error> favoritesError;
  KeyedTable<WorldSystem> systems;
  KeyedTable<WorldLine> lines;
  KeyedTable<WorldIncident> incidents;
  /// Artworks with their `intrinsicWidth`. A shield of the same shape and text, and an equal icon, is drawn
  /// at this width when its own description has none.
  KeyedTable<TransitArtworkDataSource> drawnArtworks;
  WorldService service;

  ConnectionFailureDiagnosis diagnosis = ConnectionFailureDiagnosis::noInternetConnection;
  /// A capability without an entry is false.
  std::map<std::string, bool, std::less<>> capabilities;
  int lockState = 0;

  /// False: every opening of a URL or an activity reports failure.
  bool opens = true;
  /// False: no user activity can be made.
  bool acceptsActivities = true;
  /// False: nothing can be archived.
  bool archives = true;
  /// False: nothing can be compressed.
  bool compresses = true;
  WorldBundle bundle = WorldBundle::plugin;

  /// Keys that are in no string table, so that a look-up returns its fallback.
  std::set<std::string, std::less<>> missingTexts;
  /// Names without an image.
  std::set<std::string, std::less<>> missingImages;
};

}  // namespace linewatch::simulation
