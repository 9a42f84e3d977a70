#pragma once

#include <memory>
#include <optional>

#include "simulation/roles/archive_format.h"
#include "simulation/world/backstage.h"
#include "wire/keyed_archiver.h"

namespace linewatch::simulation {

/// A compact, deterministic archive in memory.
///
///     archive   "LWKA" 01  root's end: 8 bytes, lowest first  root VALUE  names: COUNT { COUNT bytes }…
///     COUNT     7 bits a byte, lowest first; the high bit says that more follow
///     VALUE     one kind byte, then
///       01 false, 02 true
///       03 signed      COUNT of the zigzag form (0, -1, 1, -2 … are 0, 1, 2, 3 …)
///       04 unsigned    COUNT
///       05 double      8 bytes, lowest first; a negative zero as zero
///       06 text        COUNT of bytes, bytes
///       07 bytes       COUNT of bytes, bytes
///       08 array       COUNT of elements, VALUEs of kinds 01 to 09
///       09 dictionary  COUNT of entries, { key: COUNT of bytes, bytes; VALUE of kinds 01 to 09 }…
///       0A error       domain: COUNT of bytes, bytes; code: COUNT of the zigzag form; info: VALUE of kind 09
///       0B list        COUNT of elements, VALUEs
///       0C object      class: COUNT, { key: COUNT, VALUE }…, 00
///
/// Class names and keys of objects stand as their places in the names, counted from 1 in the order of their
/// first use. An array is a plain value's, a list one of `ArchivedObject`s. An object and its parts nest at
/// most 200 deep; what nests deeper, and what holds an object that is not archivable, cannot be archived.
class SimulatedKeyedArchiver final : public KeyedArchiver {
 public:
  explicit SimulatedKeyedArchiver(SharedBackstage backstage) : backstage_(std::move(backstage)) {}

  std::optional<Bytes> archivedData(const ArchivedObject& root, bool requiringSecureCoding) override;
  /// Null for bytes that do not start as an archive does.
  std::unique_ptr<KeyedUnarchiver> openForReading(const Bytes& bytes) override;

 private:
  SharedBackstage backstage_;
};

}  // namespace linewatch::simulation
