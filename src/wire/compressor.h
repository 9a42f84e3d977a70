#pragma once

#include <optional>

#include "shared/value.h"

namespace linewatch {

/// Compresses buffers. Any thread.
class Compressor {
 public:
  virtual ~Compressor() = default;
  /// The bytes as one bzip2 stream; absent when memory runs out or there are more than 4 GiB.
  virtual std::optional<Bytes> bzip2(const Bytes& data) = 0;
};

/// libbz2's buffer compression.
class LibraryCompressor final : public Compressor {
 public:
  std::optional<Bytes> bzip2(const Bytes& data) override;
};

}  // namespace linewatch
