#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "simulation/roles/archive_format.h"
#include "wire/archive/archive_reading.h"

namespace linewatch::simulation::archive {

/// Reads one archive. The bytes are checked as a whole before anything is decoded; decoding then reads only
/// what it is asked for.
class Reader final : public ArchiveReading {
 public:
  /// Whether the bytes start as an archive does.
  static bool canOpen(const Bytes& bytes);

  explicit Reader(Bytes bytes) : bytes_(std::move(bytes)), limit_(bytes_.size()) {}

 private:
  class ObjectDecoder;

  // Each of these reads from `position` on and moves it behind what was read. What cannot be read marks the
  // archive as malformed and gives something harmless.
  std::uint8_t readByte(std::size_t& position);
  std::uint64_t readCount(std::size_t& position);
  std::uint64_t readFixed(std::size_t& position);
  std::string_view readSized(std::size_t& position);
  std::string_view readName(std::size_t& position);
  Kind readKind(std::size_t& position);

  std::optional<ArchivedObject> decodeRoot(const AllowedClasses& allowed) override;
  void checkArchive();
  void readNames(std::size_t position);
  // Each of these moves `position` behind a value, or a part of one, that is `depth` levels down.
  void skip(std::size_t& position, int depth);
  void skipContents(Kind kind, std::size_t& position, int depth);
  void skipPlain(std::size_t& position, int depth);
  void skipError(std::size_t& position, int depth);
  void skipParts(std::size_t& position, int depth);

  std::optional<ArchivedObject> decode(std::size_t position, const AllowedClasses& allowed);
  std::optional<ArchivedObject> decodeError(std::size_t position, const AllowedClasses& allowed);
  std::optional<ArchivedObject> decodeList(std::size_t position, const AllowedClasses& allowed);
  std::optional<ArchivedObject> decodeArchivable(std::size_t position, const AllowedClasses& allowed);
  Value decodeValue(std::size_t& position);
  Value decodeArray(std::size_t& position);
  Dictionary decodeDictionary(std::size_t& position);
  Bytes decodeBytes(std::size_t& position);

  void failAsMalformed(std::size_t position, const std::string& what);

  Bytes bytes_;
  /// Nothing is read from here on.
  std::size_t limit_;
  std::vector<std::string_view> names_;
};

}  // namespace linewatch::simulation::archive
