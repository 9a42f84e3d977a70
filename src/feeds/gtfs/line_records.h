#pragma once

#include <cstddef>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "feeds/gtfs/line_index.h"
#include "platform/transit_records.h"

namespace linewatch {

/// Makes the record of each line of a feed when it is first asked for, and keeps it. Lines with equal
/// artworks share them, and lines of one agency share its system. Used by one thread at a time; the records
/// may be read on any.
class LineRecords {
 public:
  explicit LineRecords(SharedLineIndex index);

  const SharedLineIndex& index() const { return index_; }

  /// Never null. The record's system is null when the feed does not state the route's agency.
  const std::shared_ptr<const TransitLineFields>& lineFieldsOfRoute(std::size_t route);

 private:
  struct HashOfArtwork {
    std::size_t operator()(const SharedArtwork& artwork) const { return hash(*artwork); }
  };
  struct SameArtwork {
    bool operator()(const SharedArtwork& a, const SharedArtwork& b) const { return *a == *b; }
  };

  std::shared_ptr<const TransitLineFields> makeLineFields(std::size_t route);
  const std::shared_ptr<const TransitSystem>& systemOf(std::uint32_t agency);
  /// A route in the agency's colour; null when the agency has none.
  const FeedRoute* routeInColorOf(std::uint32_t agency);
  SharedArtwork shared(TransitArtworkDataSource artwork);

  SharedLineIndex index_;
  std::unordered_map<std::size_t, std::shared_ptr<const TransitLineFields>> lines_;
  std::unordered_map<std::uint32_t, std::shared_ptr<const TransitSystem>> systems_;
  /// One for each agency, all found in one pass over the routes.
  std::vector<const FeedRoute*> routesInAgencyColors_;
  std::unordered_set<SharedArtwork, HashOfArtwork, SameArtwork> artworks_;
};

}  // namespace linewatch
