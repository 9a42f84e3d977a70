#include "wire/archive/cbor_archive_writer.h"

#include <string>
#include <utility>
#include <variant>

namespace linewatch::cbor {

namespace {

/// Writes an object that may nest `depth` levels deep.
class ObjectWriter final : public KeyedCoder {
 public:
  ObjectWriter(bool requiringSecureCoding, int depth)
      : requiringSecureCoding_(requiringSecureCoding), depth_(depth) {}

  std::optional<Json> write(const ArchivedObject& object) const {
    if (depth_ <= 0) return std::nullopt;
    return std::visit([this](const auto& contents) { return writeContents(contents); }, object.contents);
  }

 private:
  void encodeObject(std::string_view key, const ArchivedObject& object) override {
    add(key, deeper().write(object));
  }
  void encodeBool(std::string_view key, bool value) override { add(key, Json(value)); }
  void encodeBytes(std::string_view key, const Bytes& bytes) override { add(key, Json::binary(bytes)); }

  void add(std::string_view key, std::optional<Json> part) {
    if (!part) {
      isComplete_ = false;
    } else {
      parts_.emplace(key, std::move(*part));
    }
  }

  ObjectWriter deeper() const { return {requiringSecureCoding_, depth_ - 1}; }

  std::optional<Json> writeContents(const Value& value) const { return jsonOf(value, depth_); }

  std::optional<Json> writeContents(const Error& error) const {
    auto info = jsonOf(Value(error.info), depth_ - 1);
    if (!info) return std::nullopt;
    Json json = tagged(Kind::error);
    json.push_back(error.domain);
    json.push_back(error.code);
    json.push_back(std::move(*info));
    return json;
  }

  std::optional<Json> writeContents(const std::shared_ptr<const Archivable>& object) const {
    if (!object || (requiringSecureCoding_ && !object->supportsSecureCoding())) return std::nullopt;
    ObjectWriter writer(requiringSecureCoding_, depth_);
    object->encodeWithCoder(writer);
    if (!writer.isComplete_) return std::nullopt;
    Json json = tagged(Kind::object);
    json.push_back(std::string(object->archiveClassName()));
    json.push_back(std::move(writer.parts_));
    return json;
  }

  std::optional<Json> writeContents(const ArchivedList& list) const {
    Json json = tagged(Kind::list);
    for (const ArchivedObject& element : list) {
      auto part = deeper().write(element);
      if (!part) return std::nullopt;
      json.push_back(std::move(*part));
    }
    return json;
  }

  bool requiringSecureCoding_;
  int depth_;
  bool isComplete_ = true;
  Json parts_ = Json::object();
};

}  // namespace

std::optional<Json> archived(const ArchivedObject& root, bool requiringSecureCoding) {
  return ObjectWriter(requiringSecureCoding, kMaximumDepth).write(root);
}

}  // namespace linewatch::cbor
