#pragma once

#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "desktop/storage/cbor.h"
#include "desktop/storage/cbor_keyed_archiver.h"

namespace linewatch::desktop::cbor {

/// Reads one archive. The bytes are parsed as a whole, and then decoded as far as is asked for.
class ArchiveReader final : public KeyedUnarchiver {
 public:
  /// `item` is the root's CBOR.
  ArchiveReader(std::span<const std::uint8_t> item, std::size_t maximumItemCount)
      : root_(read(item, maximumItemCount)) {}

  void setFactory(std::string className, ArchivableFactory factory) override;
  std::optional<ArchivedObject> decodeTopLevelObject(const AllowedClasses& allowed,
                                                     std::optional<Error>& error) override;
  void finishDecoding() override { isFinished_ = true; }

 private:
  class ObjectDecoder;

  // Each of these gives none and keeps the failure when the JSON value is not what it should be.
  std::optional<ArchivedObject> decode(const Json& json, const AllowedClasses& allowed);
  std::optional<ArchivedObject> decodePlain(const Json& json, const AllowedClasses& allowed);
  std::optional<ArchivedObject> decodeError(const Json& json, const AllowedClasses& allowed);
  std::optional<ArchivedObject> decodeList(const Json& json, const AllowedClasses& allowed);
  std::optional<ArchivedObject> decodeArchivable(const Json& json, const AllowedClasses& allowed);
  std::optional<ArchivedObject> makeObject(const std::string& className, const Json& parts);

  bool isAllowed(std::string_view className, const AllowedClasses& allowed);
  /// Keeps the first failure.
  void fail(ArchiveErrorCode code, std::string description);

  /// Absent when the bytes are malformed.
  std::optional<Json> root_;
  std::map<std::string, ArchivableFactory, std::less<>> factories_;
  std::optional<Error> error_;
  bool isFinished_ = false;
};

}  // namespace linewatch::desktop::cbor
