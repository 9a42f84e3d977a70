#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "shared/byte_size.h"
#include "shared/outcome.h"

namespace linewatch {

/// Far more than the table of any feed's lines or agencies. A larger file is refused unread.
inline constexpr std::size_t kLargestGtfsTable = 64 * kMebibyte;

/// The folder or archive that holds the tables of a timetable feed. Used by one thread at a time. Errors name
/// the table; the caller, who knows the folder or archive, adds that.
class GtfsSource {
 public:
  GtfsSource() = default;
  GtfsSource(const GtfsSource&) = delete;
  GtfsSource& operator=(const GtfsSource&) = delete;
  virtual ~GtfsSource() = default;

  /// The bytes of a table, e.g. of "routes.txt", at most `kLargestGtfsTable`; none when the feed does not
  /// have the table.
  virtual Outcome<std::optional<std::string>> file(std::string_view name) = 0;

  /// Takes the next bytes of a table; false: no more are wanted.
  using PieceTaker = std::function<bool(std::string_view piece)>;
  /// Hands the bytes of a table to `take` in order, so that a large table need not be in memory as a whole.
  /// False when the feed does not have the table.
  virtual Outcome<bool> read(std::string_view name, const PieceTaker& take) {
    const auto bytes = file(name);
    if (!bytes) return bytes.error();
    if (*bytes) take(**bytes);
    return bytes->has_value();
  }
};

}  // namespace linewatch
