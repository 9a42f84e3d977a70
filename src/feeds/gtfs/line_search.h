#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "feeds/gtfs/line_index.h"

namespace linewatch {

/// A line and the feed that it belongs to.
struct FoundLine {
  SharedLineIndex index;
  std::size_t route = 0;

  const FeedRoute& entry() const { return index->routes()[route]; }
  const std::string& name() const { return index->nameOfRoute(route); }
  /// The long name; the short one when there is none.
  const std::string& longName() const { return entry().longName.empty() ? name() : entry().longName; }
  /// Empty when the feed does not say.
  std::string agencyName() const {
    return entry().agency ? index->agencies()[*entry().agency].name : std::string();
  }
  bool operator==(const FoundLine&) const = default;
};

/// The lines that match the query. Each word of the query must start a word of the line's or its agency's
/// name, or be part of one; order, case and accents do not matter. Parts must have three letters and no
/// digit; two are enough when nothing else matches. First come lines with exactly that name, then lines whose
/// name starts with it, both in natural order; then the rest in the order of the feeds, with matches of parts
/// last. An empty query matches every line.
std::vector<FoundLine> searchLines(std::span<const SharedLineIndex> indexes, std::string_view query);

}  // namespace linewatch
