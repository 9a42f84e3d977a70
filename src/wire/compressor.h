#pragma once

#include <optional>

#include "shared/value.h"

namespace linewatch {

/// Compresses buffers. Any thread.
class Compressor {
 public:
  virtual ~Compressor() = default;
  /// The bytes as one bzip2 stream; none when they cannot be compressed, for want of memory or because they
  /// are more than 4 GiB.
  virtual std::optional<Bytes> bzip2(const Bytes& data) = 0;
};

/// libbz2's buffer compression.
class LibraryCompressor final : public Compressor {
 public:
  std::optional<Bytes> bzip2(const Bytes& data) override;
};

}  // namespace linewatch
