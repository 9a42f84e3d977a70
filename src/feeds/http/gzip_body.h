#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>

#include "shared/error.h"
#include "shared/value.h"

namespace linewatch {

/// Unpacks a gzip stream that comes in pieces, and checks it to its end: check sum, length, and that nothing
/// but further gzip members follows.
class GzipBody {
 public:
  /// `maximumBytes`: the limit of the unpacked size.
  explicit GzipBody(std::size_t maximumBytes);
  ~GzipBody();

  /// Appends what the piece unpacks to. The error of a damaged stream, and of one that unpacks to more than
  /// the limit, comes with the piece that shows it; nothing may be taken after an error.
  std::optional<Error> take(std::string_view piece, Bytes& unpacked);
  /// The error of a stream that has not come to its end. After the last piece.
  std::optional<Error> finish() const;

 private:
  struct Stream;

  std::size_t maximumBytes_;
  std::unique_ptr<Stream> stream_;
};

}  // namespace linewatch
