#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "feeds/gtfs/line_index.h"

namespace linewatch {

/// One line of one of several feeds.
struct FoundLine {
  SharedLineIndex index;
  std::size_t route = 0;

  const FeedRoute& entry() const { return index->routes()[route]; }
  const std::string& name() const { return index->nameOfRoute(route); }
  /// What says more than a short name does, where there is such a name.
  const std::string& longName() const { return entry().longName.empty() ? name() : entry().longName; }
  /// Empty when the feed does not say.
  std::string agencyName() const {
    return entry().agency ? index->agencies()[*entry().agency].name : std::string();
  }
  bool operator==(const FoundLine&) const = default;
};

/// The lines that the query fits: each of its words starts a word of the line's names or of its agency's, or
/// is a part of one, in any order, case and accent. Lines of that very name come first, then lines whose name
/// starts so, both in natural order; then the rest as the feeds have them, those where a word is but a part
/// last. Only words of three letters and no digit count as parts. An empty query fits every line.
std::vector<FoundLine> searchLines(std::span<const SharedLineIndex> indexes, std::string_view query);

}  // namespace linewatch
