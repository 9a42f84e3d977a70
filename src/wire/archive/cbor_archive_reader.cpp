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

std::optional<ArchivedObject> ArchiveReader::decodeRoot(const AllowedClasses& allowed) {
  if (root_) return decode(*root_, allowed);
  fail(ArchiveErrorCode::malformed, "the archive is not one whole item within the limits");
  return std::nullopt;
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
    fail(ArchiveErrorCode::malformed, "an item is no value");
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
  fail(ArchiveErrorCode::malformed, "an item is no error");
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
    fail(ArchiveErrorCode::malformed, "an item is no object");
    return std::nullopt;
  }
  const auto& className = json[1].get_ref<const std::string&>();
  if (!isAllowed(className, allowed)) return std::nullopt;
  ObjectDecoder parts(*this, json[2]);
  return makeObject(className, parts);
}

}  // namespace linewatch::cbor
