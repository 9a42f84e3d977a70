#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>

#include "shared/error.h"
#include "shared/value.h"

namespace linewatch {

/// Unpacks a gzip stream that comes in pieces. Checks the checksum and the length of each member, and that
/// only members follow.
class GzipBody {
 public:
  /// `maximumBytes` limits the unpacked size.
  explicit GzipBody(std::size_t maximumBytes);
  ~GzipBody();

  /// Unpacks the piece and appends the result to `unpacked`. An error if the stream is damaged or its
  /// unpacked size exceeds the limit; do not call it again after an error.
  std::optional<Error> take(std::string_view piece, Bytes& unpacked);
  /// Call it after the last piece. An error if the stream is cut off.
  std::optional<Error> finish() const;

 private:
  struct Stream;

  std::size_t maximumBytes_;
  std::unique_ptr<Stream> stream_;
};

}  // namespace linewatch
