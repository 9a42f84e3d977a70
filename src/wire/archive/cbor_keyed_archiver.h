#pragma once

#include <cstddef>

#include "wire/keyed_archiver.h"

namespace linewatch {

/// Keyed archives in CBOR, with identical bytes for equal objects.
///
///     archive   D9 D9 F7 (tag 55799, which marks CBOR), then the root as one CBOR item
///
/// cbor.h describes the items and their limits. An object cannot be archived when it exceeds the limits or
/// has a part that is an in-memory object.
class CborKeyedArchiver final : public KeyedArchiver {
 public:
  CborKeyedArchiver();
  /// `maximumItemCount`: the limit of the number of CBOR items in an archive.
  explicit CborKeyedArchiver(std::size_t maximumItemCount) : maximumItemCount_(maximumItemCount) {}

  std::optional<Bytes> archivedData(const ArchivedObject& root, bool requiringSecureCoding) override;
  /// Null when the bytes do not start with the mark.
  std::unique_ptr<KeyedUnarchiver> openForReading(const Bytes& bytes) override;

 private:
  std::size_t maximumItemCount_;
};

}  // namespace linewatch
