#include "simulation/roles/archive_reader.h"

#include <algorithm>
#include <bit>
#include <functional>

namespace linewatch::simulation::archive {

/// The parts of one object.
class Reader::ObjectDecoder final : public KeyedDecoder {
 public:
  ObjectDecoder(Reader& reader, std::size_t position) : reader_(reader) {
    while (true) {
      const std::string_view key = reader.readName(position);
      if (key.data() == nullptr) break;
      parts_.emplace_back(key, position);
      reader.skip(position, 0);
    }
  }

  bool containsValueForKey(std::string_view key) const override { return find(key).has_value(); }

  std::optional<ArchivedObject> decodeObject(std::string_view key, const AllowedClasses& allowed) override {
    const auto position = find(key);
    return position ? reader_.decode(*position, allowed) : std::nullopt;
  }

  bool decodeBool(std::string_view key) override { return decodeScalar<bool>(key).value_or(false); }
  std::optional<Bytes> decodeBytes(std::string_view key) override { return decodeScalar<Bytes>(key); }

 private:
  std::optional<std::size_t> find(std::string_view key) const {
    const auto part = std::ranges::find(parts_, key, &Part::first);
    return part == parts_.end() ? std::nullopt : std::optional(part->second);
  }

  template <class T>
  std::optional<T> decodeScalar(std::string_view key) {
    const auto object = decodeObject(key, {kAllKinds.begin(), kAllKinds.end()});
    if (!object) return std::nullopt;
    const auto* value = std::get_if<Value>(&object->contents);
    const T* scalar = value != nullptr ? value->get<T>() : nullptr;
    if (scalar != nullptr) return *scalar;
    reader_.fail(ArchiveErrorCode::notAllowed, "the value of " + std::string(key) + " is of another kind");
    return std::nullopt;
  }

  using Part = std::pair<std::string_view, std::size_t>;
  static constexpr std::array kAllKinds = {kArchivedValueClass, kArchivedArrayClass, kArchivedErrorClass};

  Reader& reader_;
  std::vector<Part> parts_;
};

bool Reader::canOpen(const Bytes& bytes) {
  return bytes.size() >= kMagic.size() && std::equal(kMagic.begin(), kMagic.end(), bytes.begin());
}

std::optional<ArchivedObject> Reader::decodeRoot(const AllowedClasses& allowed) {
  checkArchive();
  return hasFailed() ? std::nullopt : decode(kHeaderSize, allowed);
}

void Reader::checkArchive() {
  limit_ = bytes_.size();
  std::size_t position = kMagic.size();
  const std::uint64_t rootEnd = readFixed(position);
  if (hasFailed()) return;
  if (rootEnd < kHeaderSize || rootEnd > bytes_.size()) {
    return failAsMalformed(kMagic.size(), "the root's end is not within the archive");
  }
  readNames(rootEnd);
  limit_ = rootEnd;
  skip(position, 1);
  if (position != limit_) failAsMalformed(position, "the root does not end where it should");
}

void Reader::readNames(std::size_t position) {
  names_.clear();
  for (std::uint64_t left = readCount(position); left > 0 && !hasFailed(); --left) {
    names_.push_back(readSized(position));
  }
  if (position != bytes_.size()) failAsMalformed(position, "something follows the names");
}

std::uint8_t Reader::readByte(std::size_t& position) {
  if (position < limit_) return bytes_[position++];
  failAsMalformed(position, "the archive ends too early");
  return 0;
}

std::uint64_t Reader::readCount(std::size_t& position) {
  std::uint64_t count = 0;
  for (int shift = 0; shift < 64; shift += 7) {
    const std::uint8_t byte = readByte(position);
    // Ten groups of seven bits hold more than a count does.
    if (shift == 63 && byte > 1) break;
    count |= std::uint64_t{byte & 0x7FU} << shift;
    if (byte < 0x80) return count;
  }
  failAsMalformed(position, "a count is too long");
  return 0;
}

std::uint64_t Reader::readFixed(std::size_t& position) {
  std::uint64_t value = 0;
  for (int shift = 0; shift < 64; shift += 8) value |= std::uint64_t{readByte(position)} << shift;
  return value;
}

std::string_view Reader::readSized(std::size_t& position) {
  const std::uint64_t size = readCount(position);
  if (size > limit_ - std::min(position, limit_)) {
    failAsMalformed(position, "the archive ends too early");
    return "";
  }
  const std::size_t start = std::exchange(position, position + size);
  return {reinterpret_cast<const char*>(bytes_.data()) + start, size};
}

/// A view of nothing at all at the end of an object's parts.
std::string_view Reader::readName(std::size_t& position) {
  const std::uint64_t place = readCount(position);
  if (place == kEndOfObject) return {};
  if (place <= names_.size()) return names_[place - 1];
  failAsMalformed(position, "a name is not among the names");
  return {};
}

Kind Reader::readKind(std::size_t& position) {
  const std::uint8_t kind = readByte(position);
  if (kind < static_cast<std::uint8_t>(Kind::falseValue) || kind > static_cast<std::uint8_t>(Kind::object)) {
    failAsMalformed(position, "there is no kind " + std::to_string(kind));
    return Kind::falseValue;
  }
  return static_cast<Kind>(kind);
}

void Reader::skip(std::size_t& position, int depth) {
  if (depth > kMaximumDepth) return failAsMalformed(position, "values are nested too deep");
  const Kind kind = readKind(position);
  if (!hasFailed()) skipContents(kind, position, depth + 1);
}

void Reader::skipContents(Kind kind, std::size_t& position, int depth) {
  switch (kind) {
    case Kind::falseValue:
    case Kind::trueValue:
      break;
    case Kind::signedInteger:
    case Kind::unsignedInteger:
      readCount(position);
      break;
    case Kind::floatingPoint:
      readFixed(position);
      break;
    case Kind::text:
    case Kind::bytes:
      readSized(position);
      break;
    case Kind::array:
      for (auto left = readCount(position); left > 0 && !hasFailed(); --left) skipPlain(position, depth);
      break;
    case Kind::dictionary:
      for (auto left = readCount(position); left > 0 && !hasFailed(); --left) {
        readSized(position);
        skipPlain(position, depth);
      }
      break;
    case Kind::error:
      skipError(position, depth);
      break;
    case Kind::list:
      for (auto left = readCount(position); left > 0 && !hasFailed(); --left) skip(position, depth);
      break;
    case Kind::object:
      skipParts(position, depth);
      break;
  }
}

void Reader::skipPlain(std::size_t& position, int depth) {
  if (position < limit_ && bytes_[position] > static_cast<std::uint8_t>(Kind::dictionary)) {
    return failAsMalformed(position, "a plain value holds another kind");
  }
  skip(position, depth);
}

void Reader::skipError(std::size_t& position, int depth) {
  readSized(position);
  readCount(position);
  if (position < limit_ && bytes_[position] != static_cast<std::uint8_t>(Kind::dictionary)) {
    failAsMalformed(position, "an error's info is no dictionary");
  }
  if (!hasFailed()) skip(position, depth);
}

void Reader::skipParts(std::size_t& position, int depth) {
  if (readName(position).data() == nullptr) return failAsMalformed(position, "an object has no class");
  while (!hasFailed() && readName(position).data() != nullptr) skip(position, depth);
}

std::optional<ArchivedObject> Reader::decode(std::size_t position, const AllowedClasses& allowed) {
  std::size_t contents = position;
  switch (readKind(contents)) {
    case Kind::error:
      return decodeError(contents, allowed);
    case Kind::list:
      return decodeList(contents, allowed);
    case Kind::object:
      return decodeArchivable(contents, allowed);
    default:
      if (!isAllowed(kArchivedValueClass, allowed)) return std::nullopt;
      return ArchivedObject{decodeValue(position)};
  }
}

std::optional<ArchivedObject> Reader::decodeError(std::size_t position, const AllowedClasses& allowed) {
  if (!isAllowed(kArchivedErrorClass, allowed)) return std::nullopt;
  Error error;
  error.domain = readSized(position);
  error.code = unzigzag(readCount(position));
  error.info = decodeDictionary(++position);
  return ArchivedObject{std::move(error)};
}

std::optional<ArchivedObject> Reader::decodeList(std::size_t position, const AllowedClasses& allowed) {
  if (!isAllowed(kArchivedArrayClass, allowed)) return std::nullopt;
  ArchivedList list;
  bool isComplete = true;
  for (auto left = readCount(position); left > 0; --left) {
    auto element = decode(position, allowed);
    skip(position, 0);
    if (element) {
      list.push_back(std::move(*element));
    } else {
      isComplete = false;
    }
  }
  return isComplete ? std::optional(ArchivedObject{std::move(list)}) : std::nullopt;
}

std::optional<ArchivedObject> Reader::decodeArchivable(std::size_t position, const AllowedClasses& allowed) {
  const std::string className(readName(position));
  if (!isAllowed(className, allowed)) return std::nullopt;
  ObjectDecoder parts(*this, position);
  return makeObject(className, parts);
}

Value Reader::decodeValue(std::size_t& position) {
  switch (readKind(position)) {
    case Kind::trueValue:
      return true;
    case Kind::signedInteger:
      return unzigzag(readCount(position));
    case Kind::unsignedInteger:
      return readCount(position);
    case Kind::floatingPoint:
      return std::bit_cast<double>(readFixed(position));
    case Kind::text:
      return readSized(position);
    case Kind::bytes:
      return decodeBytes(position);
    case Kind::array:
      return decodeArray(position);
    case Kind::dictionary:
      return decodeDictionary(position);
    default:
      return false;
  }
}

Value Reader::decodeArray(std::size_t& position) {
  Array array;
  for (auto left = readCount(position); left > 0; --left) array.push_back(decodeValue(position));
  return array;
}

Dictionary Reader::decodeDictionary(std::size_t& position) {
  Dictionary dictionary;
  for (auto left = readCount(position); left > 0; --left) {
    std::string key(readSized(position));
    dictionary.insert_or_assign(std::move(key), decodeValue(position));
  }
  return dictionary;
}

Bytes Reader::decodeBytes(std::size_t& position) {
  const std::string_view bytes = readSized(position);
  return {bytes.begin(), bytes.end()};
}

void Reader::failAsMalformed(std::size_t position, const std::string& what) {
  fail(ArchiveErrorCode::malformed, "at byte " + std::to_string(position) + ": " + what);
}

}  // namespace linewatch::simulation::archive
