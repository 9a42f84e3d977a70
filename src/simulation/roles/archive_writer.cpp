#include "simulation/roles/archive_writer.h"

#include <algorithm>
#include <bit>
#include <variant>

namespace linewatch::simulation::archive {

namespace {

/// Counts one level of nesting as long as it lives.
class Level {
 public:
  explicit Level(int& depth) : depth_(++depth) {}
  ~Level() { --depth_; }
  Level(const Level&) = delete;
  Level& operator=(const Level&) = delete;

 private:
  int& depth_;
};

}  // namespace

struct Writer::ValueWriter {
  Writer& writer;

  void operator()(bool value) const { writer.writeKind(value ? Kind::trueValue : Kind::falseValue); }
  void operator()(std::int64_t value) const {
    writer.writeKind(Kind::signedInteger);
    writer.writeCount(zigzag(value));
  }
  void operator()(std::uint64_t value) const {
    writer.writeKind(Kind::unsignedInteger);
    writer.writeCount(value);
  }
  void operator()(double value) const {
    writer.writeKind(Kind::floatingPoint);
    // Equal objects give identical bytes, and the two zeros are equal.
    writer.writeFixed(std::bit_cast<std::uint64_t>(value == 0 ? 0.0 : value));
  }
  void operator()(const std::string& value) const {
    writer.writeKind(Kind::text);
    writer.writeText(value);
  }
  void operator()(const Bytes& value) const {
    writer.writeKind(Kind::bytes);
    writer.writeSized(value.data(), value.size());
  }
  void operator()(const Array& value) const {
    writer.writeKind(Kind::array);
    writer.writeCount(value.size());
    for (const Value& element : value) writer.writeContents(element);
  }
  void operator()(const Dictionary& value) const {
    writer.writeKind(Kind::dictionary);
    writer.writeCount(value.size());
    for (const auto& [key, element] : value) {
      writer.writeText(key);
      writer.writeContents(element);
    }
  }
  void operator()(const std::shared_ptr<const Object>&) const { writer.failed_ = true; }
};

std::optional<Bytes> Writer::archive(const ArchivedObject& root) {
  bytes_.assign(kMagic.begin(), kMagic.end());
  writeFixed(0);
  write(root);
  if (failed_) return std::nullopt;
  for (std::size_t i = 0; i < sizeof(std::uint64_t); ++i) {
    bytes_[kMagic.size() + i] = static_cast<std::uint8_t>(std::uint64_t{bytes_.size()} >> (8 * i));
  }
  writeNames();
  return std::move(bytes_);
}

void Writer::encodeObject(std::string_view key, const ArchivedObject& object) {
  writeName(key);
  write(object);
}

void Writer::encodeBool(std::string_view key, bool value) {
  writeName(key);
  writeKind(value ? Kind::trueValue : Kind::falseValue);
}

void Writer::encodeBytes(std::string_view key, const Bytes& bytes) {
  writeName(key);
  writeKind(Kind::bytes);
  writeSized(bytes.data(), bytes.size());
}

void Writer::write(const ArchivedObject& object) {
  std::visit([this](const auto& contents) { writeContents(contents); }, object.contents);
}

void Writer::writeContents(const Value& value) {
  const Level level(depth_);
  if (depth_ > kMaximumDepth) failed_ = true;
  if (failed_) return;
  std::visit(ValueWriter{*this}, value.storage());
}

void Writer::writeContents(const Error& error) {
  const Level level(depth_);
  writeKind(Kind::error);
  writeText(error.domain);
  writeCount(zigzag(error.code));
  writeContents(Value(error.info));
}

void Writer::writeContents(const std::shared_ptr<const Archivable>& object) {
  const Level level(depth_);
  if (!object || depth_ > kMaximumDepth || (requiringSecureCoding_ && !object->supportsSecureCoding())) {
    failed_ = true;
  }
  if (failed_) return;
  writeKind(Kind::object);
  writeName(object->archiveClassName());
  object->encodeWithCoder(*this);
  writeCount(kEndOfObject);
}

void Writer::writeContents(const ArchivedList& list) {
  const Level level(depth_);
  if (depth_ > kMaximumDepth) failed_ = true;
  if (failed_) return;
  writeKind(Kind::list);
  writeCount(list.size());
  for (const ArchivedObject& element : list) write(element);
}

void Writer::writeCount(std::uint64_t count) {
  for (; count >= 0x80; count >>= 7) bytes_.push_back(static_cast<std::uint8_t>(count | 0x80));
  bytes_.push_back(static_cast<std::uint8_t>(count));
}

void Writer::writeFixed(std::uint64_t value) {
  for (std::size_t i = 0; i < sizeof value; ++i)
    bytes_.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

void Writer::writeSized(const void* data, std::size_t size) {
  writeCount(size);
  const auto* first = static_cast<const std::uint8_t*>(data);
  bytes_.insert(bytes_.end(), first, first + size);
}

void Writer::writeName(std::string_view name) { writeCount(placeOf(name)); }

void Writer::writeNames() {
  writeCount(names_.size());
  for (const std::string_view name : names_) writeText(name);
}

std::size_t Writer::placeOf(std::string_view name) {
  const std::size_t guess = followers_[lastPlace_];
  if (guess != 0 && names_[guess - 1] == name) return lastPlace_ = guess;
  const auto [known, isNew] = places_.try_emplace(std::string(name), names_.size() + 1);
  if (isNew) {
    names_.push_back(known->first);
    followers_.push_back(0);
  }
  followers_[lastPlace_] = known->second;
  return lastPlace_ = known->second;
}

}  // namespace linewatch::simulation::archive
