#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "shared/byte_size.h"
#include "shared/outcome.h"

namespace linewatch {

/// More than any feed needs for a table of its lines or agencies; a larger file is refused unread.
inline constexpr std::size_t kLargestGtfsTable = 64 * kMebibyte;

/// Where the tables of a timetable feed lie: a folder, or an archive. Used by one thread at a time. Its
/// errors name a table, not the place of the whole: that is known to who opened it.
class GtfsSource {
 public:
  GtfsSource() = default;
  GtfsSource(const GtfsSource&) = delete;
  GtfsSource& operator=(const GtfsSource&) = delete;
  virtual ~GtfsSource() = default;

  /// The bytes of the table, e.g. of "routes.txt"; none when the feed has no such table. At most
  /// `kLargestGtfsTable` bytes.
  virtual Outcome<std::optional<std::string>> file(std::string_view name) = 0;
};

}  // namespace linewatch
