#pragma once

#include <cstddef>
#include <string>

namespace linewatch::app {

// An alerts feed by hand: a header, and entities that each say something of one route.
inline std::string varint(std::size_t value) {
  std::string encoded;
  for (; value > 0x7F; value >>= 7) encoded += static_cast<char>((value & 0x7F) | 0x80);
  return encoded + static_cast<char>(value);
}
inline std::string field(int number, const std::string& bytes) {
  return static_cast<char>(number << 3 | 2) + varint(bytes.size()) + bytes;
}
inline std::string text(const std::string& words) { return field(1, field(1, words)); }
/// `more` is any other fields of the alert.
inline std::string alert(const std::string& id, const std::string& route, const std::string& header,
                         const std::string& more = "") {
  return field(2, field(1, id) + field(5, more + field(5, field(2, route)) + field(10, text(header))));
}
/// A period that ends then, in seconds since 1970.
inline std::string until(std::size_t end) { return field(1, "\x10" + varint(end)); }
inline std::string alerts(const std::string& entities) { return field(1, field(1, "2.0")) + entities; }

}  // namespace linewatch::app
