#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "shared/mutex.h"
#include "shared/value.h"
#include "wire/compressor.h"

namespace linewatch {

/// A compressor that remembers what it has compressed, so that slow work can be done ahead on another thread.
/// Any thread; the other compressor must outlive it.
class CompressionMemo final : public Compressor {
 public:
  explicit CompressionMemo(Compressor& compressor) : compressor_(compressor) {}

  /// Compresses the buffers and forgets all others. Buffers that are remembered are not compressed again.
  void remember(std::vector<Bytes> buffers) LINEWATCH_EXCLUDES(mutex_);
  /// The remembered result for exactly these bytes, else that of the other compressor, which is remembered
  /// too.
  std::optional<Bytes> bzip2(const Bytes& data) override LINEWATCH_EXCLUDES(mutex_);

 private:
  struct BytesHash {
    std::size_t operator()(const Bytes& bytes) const {
      return std::hash<std::string_view>{}({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    }
  };
  using Results = std::unordered_map<Bytes, std::shared_ptr<const Bytes>, BytesHash>;

  /// Null when nothing is remembered for these bytes.
  std::shared_ptr<const Bytes> find(const Bytes& data) LINEWATCH_EXCLUDES(mutex_);

  Compressor& compressor_;
  Mutex mutex_;
  Results results_ LINEWATCH_GUARDED_BY(mutex_);
};

}  // namespace linewatch
