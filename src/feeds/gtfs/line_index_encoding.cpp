#include "feeds/gtfs/line_index_encoding.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "feeds/gtfs/colors.h"
#include "shared/failure.h"

namespace linewatch {

namespace {

constexpr std::string_view kSignature = "LWLI\x01";

enum Part : std::uint8_t {
  kAgencyPart = 1,
  kTypePart = 2,
  kColorPart = 4,
  kTextColorPart = 8,
  kAllParts = 15
};

constexpr std::size_t kSmallestAgency = 3;
constexpr std::size_t kSmallestRoute = 4;
constexpr char kHexadecimal[] = "0123456789ABCDEF";

class Writer {
 public:
  void byte(std::uint8_t value) { bytes_.push_back(value); }

  void number(std::uint32_t value) {
    for (; value >= 0x80U; value >>= 7U) byte(static_cast<std::uint8_t>(value | 0x80U));
    byte(static_cast<std::uint8_t>(value));
  }

  void raw(std::string_view text) { bytes_.insert(bytes_.end(), text.begin(), text.end()); }

  void text(std::string_view text) {
    number(static_cast<std::uint32_t>(text.size()));
    raw(text);
  }

  void fourBytes(std::int32_t value) {
    for (unsigned shift = 0; shift < 32; shift += 8) {
      byte(static_cast<std::uint8_t>(static_cast<std::uint32_t>(value) >> shift));
    }
  }

  void color(std::string_view digits) {
    for (std::size_t i = 0; i < 6; i += 2)
      byte(static_cast<std::uint8_t>(digit(digits[i]) << 4U | digit(digits[i + 1])));
  }

  Bytes take() { return std::move(bytes_); }

 private:
  static unsigned digit(char hexadecimal) {
    return static_cast<unsigned>(std::strchr(kHexadecimal, hexadecimal) - kHexadecimal);
  }

  Bytes bytes_;
};

std::uint8_t partsOf(const FeedRoute& route) {
  const auto isColor = [](const std::string& color) {
    return !color.empty() && normalizedColor(color) == color;
  };
  return static_cast<std::uint8_t>((route.agency ? kAgencyPart : 0) | (route.type ? kTypePart : 0) |
                                   (isColor(route.color) ? kColorPart : 0) |
                                   (isColor(route.textColor) ? kTextColorPart : 0));
}

void write(Writer& writer, const FeedRoute& route) {
  const std::uint8_t parts = partsOf(route);
  writer.byte(parts);
  writer.text(route.id);
  writer.text(route.shortName);
  writer.text(route.longName);
  if (parts & kAgencyPart) writer.number(*route.agency);
  if (parts & kTypePart) writer.fourBytes(*route.type);
  if (parts & kColorPart) writer.color(route.color);
  if (parts & kTextColorPart) writer.color(route.textColor);
}

void write(Writer& writer, const FeedAgency& agency) {
  writer.text(agency.id);
  writer.text(agency.name);
  writer.text(agency.language);
}

template <class T>
void write(Writer& writer, const std::vector<T>& entries) {
  writer.number(static_cast<std::uint32_t>(entries.size()));
  for (const T& entry : entries) write(writer, entry);
}

/// After the first fault every value reads as empty.
class Reader {
 public:
  explicit Reader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

  std::size_t left() const { return bytes_.size() - position_; }
  std::size_t position() const { return position_; }
  const char* fault() const { return fault_; }

  void stop(const char* why) {
    if (fault_ == nullptr) fault_ = why;
  }

  std::string_view raw(std::size_t size) {
    if (fault_ != nullptr) return {};
    if (size > left()) {
      stop("the bytes end too early");
      return {};
    }
    position_ += size;
    return {reinterpret_cast<const char*>(bytes_.data()) + position_ - size, size};
  }

  std::uint8_t byte() {
    const std::string_view one = raw(1);
    return one.empty() ? std::uint8_t{0} : static_cast<std::uint8_t>(one.front());
  }

  std::uint32_t number() {
    std::uint64_t value = 0;
    for (unsigned shift = 0; shift < 35; shift += 7) {
      const std::uint8_t next = byte();
      value |= std::uint64_t{next & 0x7FU} << shift;
      if ((next & 0x80U) != 0) continue;
      if (value > UINT32_MAX || (shift > 0 && next == 0)) break;
      return static_cast<std::uint32_t>(value);
    }
    stop("a number is malformed");
    return 0;
  }

  std::string text() { return std::string(raw(number())); }

  /// The number of entries that follow. Each takes at least `smallest` bytes, which bounds it.
  std::uint32_t count(std::size_t smallest) {
    const std::uint32_t count = number();
    if (count <= left() / smallest) return count;
    stop("the bytes end too early");
    return 0;
  }

  std::int32_t fourBytes() {
    std::uint32_t value = 0;
    for (unsigned shift = 0; shift < 32; shift += 8) value |= std::uint32_t{byte()} << shift;
    return static_cast<std::int32_t>(value);
  }

  std::string color() {
    std::string digits;
    for (const char channel : raw(3)) {
      const auto value = static_cast<std::uint8_t>(channel);
      digits += {kHexadecimal[value >> 4U], kHexadecimal[value & 15U]};
    }
    return digits;
  }

 private:
  std::span<const std::uint8_t> bytes_;
  std::size_t position_ = 0;
  const char* fault_ = nullptr;
};

FeedAgency readAgency(Reader& reader) {
  FeedAgency agency;
  agency.id = reader.text();
  agency.name = reader.text();
  agency.language = reader.text();
  return agency;
}

FeedRoute readRoute(Reader& reader, std::size_t agencies) {
  FeedRoute route;
  const std::uint8_t parts = reader.byte();
  if ((parts & ~kAllParts) != 0) reader.stop("a route has unknown parts");
  route.id = reader.text();
  route.shortName = reader.text();
  route.longName = reader.text();
  if (parts & kAgencyPart) route.agency = reader.number();
  if (route.agency && *route.agency >= agencies) reader.stop("a route names an agency that is not there");
  if (parts & kTypePart) route.type = reader.fourBytes();
  if (parts & kColorPart) route.color = reader.color();
  if (parts & kTextColorPart) route.textColor = reader.color();
  return route;
}

LineIndex::Contents readContents(Reader& reader) {
  LineIndex::Contents contents;
  contents.feedName = reader.text();
  contents.language = reader.text();
  const std::uint32_t agencies = reader.count(kSmallestAgency);
  contents.agencies.reserve(agencies);
  for (std::uint32_t i = 0; i < agencies && !reader.fault(); ++i)
    contents.agencies.push_back(readAgency(reader));
  const std::uint32_t routes = reader.count(kSmallestRoute);
  contents.routes.reserve(routes);
  for (std::uint32_t i = 0; i < routes && !reader.fault(); ++i) {
    contents.routes.push_back(readRoute(reader, contents.agencies.size()));
  }
  if (reader.left() != 0) reader.stop("there are bytes after the end");
  return contents;
}

}  // namespace

Bytes encodeLineIndex(const LineIndex::Contents& contents) {
  Writer writer;
  writer.raw(kSignature);
  writer.text(contents.feedName);
  writer.text(contents.language);
  write(writer, contents.agencies);
  write(writer, contents.routes);
  return writer.take();
}

Outcome<LineIndex::Contents> decodeLineIndex(std::span<const std::uint8_t> bytes) {
  Reader reader(bytes);
  if (reader.raw(kSignature.size()) != kSignature) reader.stop("they are of another kind or version");
  LineIndex::Contents contents = readContents(reader);
  if (reader.fault() == nullptr) return contents;
  return failure(FailureCode::damaged, "kept lines of a feed", "byte " + std::to_string(reader.position()),
                 reader.fault());
}

}  // namespace linewatch
