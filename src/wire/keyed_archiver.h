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

/// What an archive can hold under a key: a plain value, an error, an archivable object, or a list of those.
struct ArchivedObject;
using ArchivedList = std::vector<ArchivedObject>;
struct ArchivedObject {
  std::variant<Value, Error, std::shared_ptr<const Archivable>, ArchivedList> contents;
};

/// Takes the parts of an object while it is being archived. A key is given at most once an object.
class KeyedCoder {
 public:
  virtual ~KeyedCoder() = default;
  virtual void encodeObject(std::string_view key, const ArchivedObject& object) = 0;
  virtual void encodeBool(std::string_view key, bool value) = 0;
  virtual void encodeBytes(std::string_view key, const Bytes& bytes) = 0;
};

/// Which kinds of object a decoding accepts: class names of archivable objects, and the three kinds below.
/// What a list holds must be allowed as well.
using AllowedClasses = std::set<std::string, std::less<>>;
/// Any plain value, with all that it holds.
inline constexpr std::string_view kArchivedValueClass = "value";
inline constexpr std::string_view kArchivedArrayClass = "array";
inline constexpr std::string_view kArchivedErrorClass = "error";

/// Gives the parts of an object while it is being read. An object that is not of an allowed class, or cannot
/// be read, decodes to none and makes the whole decoding fail with an error.
class KeyedDecoder {
 public:
  virtual ~KeyedDecoder() = default;
  virtual bool containsValueForKey(std::string_view key) const = 0;
  virtual std::optional<ArchivedObject> decodeObject(std::string_view key, const AllowedClasses& allowed) = 0;
  /// False when absent.
  virtual bool decodeBool(std::string_view key) = 0;
  /// None when absent.
  virtual std::optional<Bytes> decodeBytes(std::string_view key) = 0;
};

/// An object that can be put into a keyed archive.
class Archivable {
 public:
  virtual ~Archivable() = default;
  /// The name under which the object's class stands in an archive.
  virtual std::string_view archiveClassName() const = 0;
  virtual bool supportsSecureCoding() const { return true; }
  virtual void encodeWithCoder(KeyedCoder& coder) const = 0;
};

/// Makes an object from its parts; null when they do not make one.
using ArchivableFactory = std::function<std::shared_ptr<const Archivable>(KeyedDecoder&)>;

/// Reads one archive. When anything in it cannot be decoded, decoding goes on with none in its place and the
/// error is reported at the end; nothing is raised.
class KeyedUnarchiver {
 public:
  virtual ~KeyedUnarchiver() = default;
  /// Objects archived under `className` are made by `factory`.
  virtual void setFactory(std::string className, ArchivableFactory factory) = 0;
  /// The root object if it is of an allowed class; `error` is set when any part failed to decode.
  virtual std::optional<ArchivedObject> decodeTopLevelObject(const AllowedClasses& allowed,
                                                             std::optional<Error>& error) = 0;
  /// After this nothing is decoded any more.
  virtual void finishDecoding() = 0;
};

/// Turns objects into keyed archives and back. Equal objects give identical bytes. Any thread.
class KeyedArchiver {
 public:
  virtual ~KeyedArchiver() = default;
  /// The archive, or none when it cannot be made: with secure coding required, an object that does not
  /// support it.
  virtual std::optional<Bytes> archivedData(const ArchivedObject& root, bool requiringSecureCoding) = 0;
  /// A reader of the bytes, or null when they are no archive at all.
  virtual std::unique_ptr<KeyedUnarchiver> openForReading(const Bytes& bytes) = 0;
};

}  // namespace linewatch
