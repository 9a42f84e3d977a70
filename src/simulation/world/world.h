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
  /// The size of the widget's view before the host resizes it.
  Size bounds{359, 110};
};

struct WorldFavorite {
  enum class Kind { line, place, route, region };

  Kind kind = Kind::line;
  /// The key of a line of the world. Without one, or with one that the world does not hold, a favourite of
  /// kind `line` was saved for a line that is not known any more.
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
  /// What a row says beside the title; the record's `summary`.
  OptionalText secondaryText;
  /// Seconds from the world's start; absent: since always, until further notice.
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
  /// The key of a system; absent or unknown: the line has none.
  std::optional<std::string> system;
  std::optional<TransitArtworkDataSource> artwork, modeArtwork, alternateArtwork;
  /// Keys of incidents, in the line's order; unknown ones are left out.
  std::vector<std::string> incidents;
  /// False: the line has no map-item identifier, so that it cannot be looked up.
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
    /// The items of the asked lines, in the order asked, unknown ones left out.
    lines,
    error,
    /// Neither items nor an error.
    nothing,
    /// Every line of the world, in the world's order, whatever was asked.
    all
  };

  /// Between a look-up's submission and its answer. The answer shows the world at the time of the answer.
  Seconds delay{0.5};
  Answer answer = Answer::lines;
  Error error{"Transit", 7, {}};
};

/// The record that the running process has of itself.
enum class WorldBundle { plugin, application, other, none };

/// A value that starts something again each time it is given, even if it is the same.
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

/// Everything that is scripted of the world around the widget. A plain value; a platform is made from one and
/// may be given changes while it runs.
struct World {
  /// The time of the clock at second 0: 2026-11-24T08:00:00Z.
  Date start{Seconds(1795507200)};

  /// A note for the reader of a scenario: as texts are their keys, nothing depends on it.
  std::string locale = "en";
  LayoutDirection layoutDirection = LayoutDirection::leftToRight;
  /// Pixels a point.
  double scale = 2;
  ui::TextSizeCategory textSize = ui::kDefaultTextSizeCategory;
  /// Drawn first, in this order; then the generator that `seed` starts takes over.
  Restarting<std::vector<std::uint32_t>> random;
  Restarting<std::uint32_t> seed{1};

  WorldHost host;
  /// What the store of the companion application's suite holds at the start, and when the world is changed.
  Dictionary preferences;
  std::vector<WorldFavorite> favorites;
  KeyedTable<WorldSystem> systems;
  KeyedTable<WorldLine> lines;
  KeyedTable<WorldIncident> incidents;
  WorldService service;

  ConnectionFailureDiagnosis diagnosis = ConnectionFailureDiagnosis::noInternetConnection;
  /// What is not named the device cannot do.
  std::map<std::string, bool, std::less<>> capabilities;
  int lockState = 0;

  /// False: every opening of a URL or an activity reports failure.
  bool opens = true;
  /// False: no user activity can be made.
  bool acceptsActivities = true;
  /// False: the archiver gives nothing.
  bool archives = true;
  /// False: nothing can be compressed.
  bool compresses = true;
  WorldBundle bundle = WorldBundle::plugin;

  /// Keys of texts that no string table holds: a look-up gives its fallback.
  std::set<std::string, std::less<>> missingTexts;
  /// Names that there is no image of.
  std::set<std::string, std::less<>> missingImages;
};

}  // namespace linewatch::simulation
