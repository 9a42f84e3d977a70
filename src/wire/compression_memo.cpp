#include "wire/compression_memo.h"

#include <utility>

namespace linewatch {

void CompressionMemo::remember(std::vector<Bytes> buffers) {
  Results results;
  for (Bytes& buffer : buffers) {
    if (results.contains(buffer)) continue;
    auto result = find(buffer);
    if (!result) {
      // A failure is not remembered: it is a lack of memory, which may pass.
      auto compressed = compressor_.bzip2(buffer);
      if (!compressed) continue;
      result = std::make_shared<const Bytes>(*std::move(compressed));
    }
    results.emplace(std::move(buffer), std::move(result));
  }
  const MutexLock lock(mutex_);
  results_.swap(results);
}

std::optional<Bytes> CompressionMemo::bzip2(const Bytes& data) {
  if (const auto result = find(data)) return *result;
  auto compressed = compressor_.bzip2(data);
  if (compressed) {
    auto result = std::make_shared<const Bytes>(*compressed);
    const MutexLock lock(mutex_);
    results_.emplace(data, std::move(result));
  }
  return compressed;
}

std::shared_ptr<const Bytes> CompressionMemo::find(const Bytes& data) {
  const MutexLock lock(mutex_);
  const auto found = results_.find(data);
  return found == results_.end() ? nullptr : found->second;
}

}  // namespace linewatch
