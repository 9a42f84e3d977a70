#pragma once

#include <cstddef>

#include "wire/keyed_archiver.h"

namespace linewatch {

/// Keyed archives in CBOR, with identical bytes for equal objects.
///
///     archive   D9 D9 F7 (CBOR's own mark, tag 55799), then the root as one CBOR item
///
/// What the items look like, and how deep and how many there may be, stands in cbor.h. What goes beyond, and
/// what holds an object that is not archivable, cannot be archived.
class CborKeyedArchiver final : public KeyedArchiver {
 public:
  CborKeyedArchiver();
  /// `maximumItemCount`: of the CBOR items in an archive.
  explicit CborKeyedArchiver(std::size_t maximumItemCount) : maximumItemCount_(maximumItemCount) {}

  std::optional<Bytes> archivedData(const ArchivedObject& root, bool requiringSecureCoding) override;
  /// Null for bytes that do not start with the mark.
  std::unique_ptr<KeyedUnarchiver> openForReading(const Bytes& bytes) override;

 private:
  std::size_t maximumItemCount_;
};

}  // namespace linewatch
