#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "wire/archive/cbor.h"
#include "wire/keyed_archiver.h"

namespace linewatch {

inline constexpr std::string_view kArchiveErrorDomain = "KeyedArchiveErrorDomain";
/// Codes of the errors of reading an archive. Each error has a debug description.
enum class ArchiveErrorCode : std::int64_t {
  /// The bytes are not a well-formed archive.
  malformed = 1,
  /// An object is not of an allowed class, or not of the kind that the caller asked for.
  notAllowed = 2,
  /// The class of an object has no factory, or the factory rejected its parts.
  notMade = 3,
};

}  // namespace linewatch

namespace linewatch::cbor {

/// Reads one archive. All bytes are parsed first; then only the parts that are asked for are decoded.
class ArchiveReader final : public KeyedUnarchiver {
 public:
  /// `item` is the CBOR of the root.
  ArchiveReader(std::span<const std::uint8_t> item, std::size_t maximumItemCount)
      : root_(read(item, maximumItemCount)) {}

  void setFactory(std::string className, ArchivableFactory factory) override;
  std::optional<ArchivedObject> decodeTopLevelObject(const AllowedClasses& allowed,
                                                     std::optional<Error>& error) override;
  void finishDecoding() override { isFinished_ = true; }

 private:
  class ObjectDecoder;

  // Each of these is absent, and keeps the failure, when the JSON value does not have the right form.
  std::optional<ArchivedObject> decode(const Json& json, const AllowedClasses& allowed);
  std::optional<ArchivedObject> decodePlain(const Json& json, const AllowedClasses& allowed);
  std::optional<ArchivedObject> decodeError(const Json& json, const AllowedClasses& allowed);
  std::optional<ArchivedObject> decodeList(const Json& json, const AllowedClasses& allowed);
  std::optional<ArchivedObject> decodeArchivable(const Json& json, const AllowedClasses& allowed);
  std::optional<ArchivedObject> makeObject(const std::string& className, KeyedDecoder& parts);

  bool isAllowed(std::string_view className, const AllowedClasses& allowed);
  /// Keeps the first failure.
  void fail(ArchiveErrorCode code, std::string description);

  /// Absent when the bytes are malformed.
  std::optional<Json> root_;
  std::map<std::string, ArchivableFactory, std::less<>> factories_;
  std::optional<Error> error_;
  bool isFinished_ = false;
};

}  // namespace linewatch::cbor
