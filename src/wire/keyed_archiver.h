#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "shared/error.h"
#include "shared/value.h"

namespace linewatch {

class Archivable;

/// A part of an archive: a plain value, an error, an archivable object, or a list of such parts.
struct ArchivedObject;
using ArchivedList = std::vector<ArchivedObject>;
struct ArchivedObject {
  std::variant<Value, Error, std::shared_ptr<const Archivable>, ArchivedList> contents;
};

/// Takes the parts of an object that is being archived. An object gives each key at most once.
class KeyedCoder {
 public:
  virtual ~KeyedCoder() = default;
  virtual void encodeObject(std::string_view key, const ArchivedObject& object) = 0;
  virtual void encodeBool(std::string_view key, bool value) = 0;
  virtual void encodeBytes(std::string_view key, const Bytes& bytes) = 0;
};

/// The classes that a decoder accepts: the names of archivable classes and the three names below. The
/// elements of a list must be allowed too.
using AllowedClasses = std::set<std::string, std::less<>>;
/// Any plain value, with everything in it.
inline constexpr std::string_view kArchivedValueClass = "value";
inline constexpr std::string_view kArchivedArrayClass = "array";
inline constexpr std::string_view kArchivedErrorClass = "error";

/// Gives the parts of an object that is being read. A part that is not of an allowed class or cannot be read
/// is absent, and the unarchiver reports the error at the end.
class KeyedDecoder {
 public:
  virtual ~KeyedDecoder() = default;
  /// Whether the object has a part under the key.
  virtual bool containsValueForKey(std::string_view key) const = 0;
  /// The part under the key; absent when there is none, without an error.
  virtual std::optional<ArchivedObject> decodeObject(std::string_view key, const AllowedClasses& allowed) = 0;
  /// False when there is no part under the key.
  virtual bool decodeBool(std::string_view key) = 0;
  /// Absent when there is no part under the key.
  virtual std::optional<Bytes> decodeBytes(std::string_view key) = 0;
};

/// An object that can be put into a keyed archive.
class Archivable {
 public:
  virtual ~Archivable() = default;
  /// The name of the object's class in an archive.
  virtual std::string_view archiveClassName() const = 0;
  /// Whether the object may be archived when secure coding is required.
  virtual bool supportsSecureCoding() const { return true; }
  /// Gives the coder the object's parts.
  virtual void encodeWithCoder(KeyedCoder& coder) const = 0;
};

/// Makes an object from its parts; null when a part is missing or wrong.
using ArchivableFactory = std::function<std::shared_ptr<const Archivable>(KeyedDecoder&)>;

/// Reads one archive. A part that cannot be decoded is absent, decoding continues, and the first error is
/// reported at the end; nothing is thrown. One thread at a time.
class KeyedUnarchiver {
 public:
  virtual ~KeyedUnarchiver() = default;
  /// Uses `factory` to make the objects that are archived under `className`.
  virtual void setFactory(std::string className, ArchivableFactory factory) = 0;
  /// The root object; absent when it is not of an allowed class or cannot be read. `error` is set to the
  /// first failure in any part, or to absent.
  virtual std::optional<ArchivedObject> decodeTopLevelObject(const AllowedClasses& allowed,
                                                             std::optional<Error>& error) = 0;
  /// After this call every part is absent, without an error.
  virtual void finishDecoding() = 0;
};

/// Writes and reads keyed archives. Equal objects give identical bytes. Any thread.
class KeyedArchiver {
 public:
  virtual ~KeyedArchiver() = default;
  /// The archive; absent when `root` nests too deep or holds something that cannot be archived: a `Value`
  /// that is an in-memory object, or an object without secure coding when that is required.
  virtual std::optional<Bytes> archivedData(const ArchivedObject& root, bool requiringSecureCoding) = 0;
  /// A reader of the bytes; null when they do not start like an archive.
  virtual std::unique_ptr<KeyedUnarchiver> openForReading(const Bytes& bytes) = 0;
};

}  // namespace linewatch
