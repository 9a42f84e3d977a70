#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "wire/archive/archive_reading.h"
#include "wire/archive/cbor.h"

namespace linewatch::cbor {

/// Reads one archive. The bytes are parsed as a whole, and then decoded as far as is asked for.
class ArchiveReader final : public ArchiveReading {
 public:
  /// `item` is the root's CBOR.
  ArchiveReader(std::span<const std::uint8_t> item, std::size_t maximumItemCount)
      : root_(read(item, maximumItemCount)) {}

 private:
  class ObjectDecoder;

  std::optional<ArchivedObject> decodeRoot(const AllowedClasses& allowed) override;
  // Each of these gives none and keeps the failure when the JSON value is not what it should be.
  std::optional<ArchivedObject> decode(const Json& json, const AllowedClasses& allowed);
  std::optional<ArchivedObject> decodePlain(const Json& json, const AllowedClasses& allowed);
  std::optional<ArchivedObject> decodeError(const Json& json, const AllowedClasses& allowed);
  std::optional<ArchivedObject> decodeList(const Json& json, const AllowedClasses& allowed);
  std::optional<ArchivedObject> decodeArchivable(const Json& json, const AllowedClasses& allowed);

  /// Absent when the bytes are malformed.
  std::optional<Json> root_;
};

}  // namespace linewatch::cbor
