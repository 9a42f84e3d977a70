#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "feeds/catalogue/catalogue_feed.h"
#include "feeds/catalogue/catalogue_hit.h"
#include "shared/outcome.h"

namespace linewatch {

class CatalogueIndex;

/// The public catalogue of open transit feeds, ready to be searched. Immutable: any thread, several calls at
/// a time.
class Catalogue {
 public:
  /// Feeds with an id that another one has are left out. `skippedRows`: how many rows could not be read.
  explicit Catalogue(std::vector<SharedCatalogueFeed> feeds, std::size_t skippedRows = 0);
  ~Catalogue();
  Catalogue(const Catalogue&) = delete;
  Catalogue& operator=(const Catalogue&) = delete;

  /// The alerts feeds that match. Each word of the query must be a word of a feed's provider, name,
  /// municipality, region or country, the last one at least the beginning of a word. Order, case and accents
  /// do not matter, and "ue" equals "ü". A country matches by its code and by its name in several languages.
  /// A large city matches by its other names too, e.g. "Munich" by "München". Without such a feed: the alerts
  /// feeds whose timetables cover a place that matches. An empty query matches every alerts feed. Takes a few
  /// milliseconds, so that it can be called at each key on the main thread.
  CatalogueMatches search(std::string_view query) const;
  /// The alerts feed with that id, e.g. "mdb-1603", with its timetables; absent when there is none.
  std::optional<CatalogueHit> hitOf(std::string_view id) const;

  const std::vector<SharedCatalogueFeed>& feeds() const { return feeds_; }
  std::size_t skippedRows() const { return skippedRows_; }

 private:
  std::vector<SharedCatalogueFeed> feeds_;
  std::size_t skippedRows_;
  std::unique_ptr<const CatalogueIndex> index_;
};

using SharedCatalogue = std::shared_ptr<const Catalogue>;

/// Reads the catalogue's spreadsheet, a CSV file whose header names the columns. Skips and counts rows that
/// have no id or no http(s) address. Leaves out feeds that are neither timetables nor alerts. An error if the
/// text is no such spreadsheet. Takes tens of milliseconds.
Outcome<SharedCatalogue> readCatalogue(std::string_view csv);

}  // namespace linewatch
