#include "wire/archive/cbor_archive_reader.h"

#include <utility>
#include <variant>

namespace linewatch::cbor {

/// The parts of one object.
class ArchiveReader::ObjectDecoder final : public KeyedDecoder {
 public:
  ObjectDecoder(ArchiveReader& reader, const Json& parts) : reader_(reader), parts_(parts) {}

  bool containsValueForKey(std::string_view key) const override { return find(key) != nullptr; }

  std::optional<ArchivedObject> decodeObject(std::string_view key, const AllowedClasses& allowed) override {
    const Json* part = find(key);
    return part != nullptr ? reader_.decode(*part, allowed) : std::nullopt;
  }

  bool decodeBool(std::string_view key) override { return decodeScalar<bool>(key).value_or(false); }
  std::optional<Bytes> decodeBytes(std::string_view key) override { return decodeScalar<Bytes>(key); }

 private:
  const Json* find(std::string_view key) const {
    const auto part = parts_.find(key);
    return part == parts_.end() ? nullptr : &*part;
  }

  template <class T>
  std::optional<T> decodeScalar(std::string_view key) {
    const Json* part = find(key);
    if (part == nullptr) return std::nullopt;
    const auto value = valueOf(*part);
    const T* scalar = value ? value->template get<T>() : nullptr;
    if (scalar != nullptr) return *scalar;
    reader_.fail(ArchiveErrorCode::notAllowed, "the value of " + std::string(key) + " is of another kind");
    return std::nullopt;
  }

  ArchiveReader& reader_;
  const Json& parts_;
};

void ArchiveReader::setFactory(std::string className, ArchivableFactory factory) {
  factories_.insert_or_assign(std::move(className), std::move(factory));
}

std::optional<ArchivedObject> ArchiveReader::decodeTopLevelObject(const AllowedClasses& allowed,
                                                                  std::optional<Error>& error) {
  error = std::nullopt;
  if (isFinished_) return std::nullopt;
  error_ = std::nullopt;
  if (!root_) fail(ArchiveErrorCode::malformed, "the archive is not one CBOR item within the limits");
  auto root = root_ ? decode(*root_, allowed) : std::nullopt;
  error = error_;
  return root;
}

std::optional<ArchivedObject> ArchiveReader::decode(const Json& json, const AllowedClasses& allowed) {
  switch (kindOf(json).value_or(Kind::array)) {
    case Kind::error:
      return decodeError(json, allowed);
    case Kind::list:
      return decodeList(json, allowed);
    case Kind::object:
      return decodeArchivable(json, allowed);
    case Kind::unsignedInteger:
    case Kind::array:
      break;
  }
  return decodePlain(json, allowed);
}

std::optional<ArchivedObject> ArchiveReader::decodePlain(const Json& json, const AllowedClasses& allowed) {
  auto value = valueOf(json);
  if (!value) {
    fail(ArchiveErrorCode::malformed, "an item is not a value");
    return std::nullopt;
  }
  if (!isAllowed(kArchivedValueClass, allowed)) return std::nullopt;
  return ArchivedObject{std::move(*value)};
}

std::optional<ArchivedObject> ArchiveReader::decodeError(const Json& json, const AllowedClasses& allowed) {
  if (!isAllowed(kArchivedErrorClass, allowed)) return std::nullopt;
  if (json.size() == 4 && json[1].is_string()) {
    const auto code = valueOf(json[2]);
    const auto info = valueOf(json[3]);
    const auto* number = code ? code->get<std::int64_t>() : nullptr;
    const auto* table = info ? info->get<Dictionary>() : nullptr;
    if (number != nullptr && table != nullptr) {
      return ArchivedObject{Error{json[1].get<std::string>(), *number, *table}};
    }
  }
  fail(ArchiveErrorCode::malformed, "an item is not an error");
  return std::nullopt;
}

std::optional<ArchivedObject> ArchiveReader::decodeList(const Json& json, const AllowedClasses& allowed) {
  if (!isAllowed(kArchivedArrayClass, allowed)) return std::nullopt;
  ArchivedList list;
  bool isComplete = true;
  for (std::size_t i = 1; i < json.size(); ++i) {
    if (auto element = decode(json[i], allowed)) {
      list.push_back(std::move(*element));
    } else {
      isComplete = false;
    }
  }
  return isComplete ? std::optional(ArchivedObject{std::move(list)}) : std::nullopt;
}

std::optional<ArchivedObject> ArchiveReader::decodeArchivable(const Json& json,
                                                              const AllowedClasses& allowed) {
  if (json.size() != 3 || !json[1].is_string() || !json[2].is_object()) {
    fail(ArchiveErrorCode::malformed, "an item is not an object");
    return std::nullopt;
  }
  const auto& className = json[1].get_ref<const std::string&>();
  if (!isAllowed(className, allowed)) return std::nullopt;
  ObjectDecoder parts(*this, json[2]);
  return makeObject(className, parts);
}

std::optional<ArchivedObject> ArchiveReader::makeObject(const std::string& className, KeyedDecoder& parts) {
  const auto factory = factories_.find(className);
  if (factory == factories_.end()) {
    fail(ArchiveErrorCode::notMade, "there is no factory for the class " + className);
    return std::nullopt;
  }
  auto object = factory->second(parts);
  if (!object) {
    fail(ArchiveErrorCode::notMade, "the factory rejected the parts of a " + className);
    return std::nullopt;
  }
  return ArchivedObject{std::move(object)};
}

bool ArchiveReader::isAllowed(std::string_view className, const AllowedClasses& allowed) {
  if (allowed.contains(className)) return true;
  fail(ArchiveErrorCode::notAllowed,
       "a value of the class " + std::string(className) + " is not allowed here");
  return false;
}

void ArchiveReader::fail(ArchiveErrorCode code, std::string description) {
  if (error_) return;
  error_ = Error{std::string(kArchiveErrorDomain),
                 static_cast<std::int64_t>(code),
                 {{kDebugDescriptionKey, std::move(description)}}};
}

}  // namespace linewatch::cbor
