#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/artwork.h"
#include "platform/favorites.h"
#include "platform/transit_line.h"
#include "shared/date.h"
#include "shared/error.h"
#include "shared/outcome.h"
#include "simulation/recording/recorded_entry.h"

namespace linewatch::simulation {

/// An answer of the transit service in a recording.
struct RecordedAnswer {
  struct Line {
    SharedEntry entry;
    std::vector<SharedEntry> incidents;

    bool operator==(const Line&) const = default;
  };

  /// Absent when the service gave no items.
  std::optional<std::vector<Line>> lines;
  /// Without its info, which may name addresses.
  std::optional<Error> error;

  bool operator==(const RecordedAnswer&) const = default;
};

/// The favourites that a recorded fetch read.
struct RecordedFavorites {
  /// The JSON text of each favourite, and the lines that they name.
  std::vector<std::string> texts;
  std::vector<SharedEntry> lines;
  /// Why they could not be read, without the error's info; absent when they could.
  std::optional<Error> error;

  bool operator==(const RecordedFavorites&) const = default;
};

/// Turns the platform's records into entries of a scenario. Main thread.
class RecordedRecords {
 public:
  /// The width of an artwork that is drawn at size 3, in points; absent when nothing is drawn.
  using WidthOf = std::function<std::optional<double>(const TransitArtworkDataSource& artwork)>;

  /// `start`: the date of second 0 of the scenario.
  RecordedRecords(Date start, WidthOf widthOf) : start_(start), widthOf_(std::move(widthOf)) {}

  Date start() const { return start_; }
  /// Null when the answer needs more than `room` bytes.
  std::shared_ptr<const RecordedAnswer> answer(const TransitLineItems* items,
                                               const std::optional<Error>& error, std::size_t room);
  RecordedFavorites favorites(const Outcome<Favorites>& favorites);
  /// The memory of all entries that something holds, about.
  std::size_t bytes() const {
    return systems_.bytes() + lines_.bytes() + incidents_.bytes() + widths_.bytes();
  }

 private:
  SharedEntry systemEntry(const std::shared_ptr<const TransitSystem>& system);
  SharedEntry lineEntry(const TransitLine& line);
  SharedEntry incidentEntry(const TransitIncident& incident);
  std::optional<TransitArtworkDataSource> artworkForm(const SharedArtwork& artwork,
                                                      std::vector<SharedEntry>& widths);
  void addWidth(TransitArtworkDataSource part, std::vector<SharedEntry>& widths);

  Date start_;
  WidthOf widthOf_;
  RecordedTable systems_{"systems", "system"}, lines_{"lines", "line"};
  RecordedTable incidents_{"incidents", "incident"}, widths_{"drawnArtworks", "artwork"};
};

}  // namespace linewatch::simulation
