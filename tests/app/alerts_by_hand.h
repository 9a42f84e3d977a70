#pragma once

#include <cstddef>
#include <string>

namespace linewatch::app {

// An alerts feed by hand: a header, and entities that each say something of one route.
inline std::string field(int number, const std::string& bytes) {
  std::string encoded(1, static_cast<char>(number << 3 | 2));
  std::size_t length = bytes.size();
  for (; length > 0x7F; length >>= 7) encoded += static_cast<char>((length & 0x7F) | 0x80);
  return encoded + static_cast<char>(length) + bytes;
}
inline std::string text(const std::string& words) { return field(1, field(1, words)); }
inline std::string alert(const std::string& id, const std::string& route, const std::string& header) {
  return field(2, field(1, id) + field(5, field(5, field(2, route)) + field(10, text(header))));
}
inline std::string alerts(const std::string& entities) { return field(1, field(1, "2.0")) + entities; }

}  // namespace linewatch::app
