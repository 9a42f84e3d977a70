#pragma once

#include <cstddef>
#include <string>

namespace linewatch::app {

// Encodes GTFS-Realtime alerts feeds, independently of the program's own reader.

inline std::string varint(std::size_t value) {
  std::string encoded;
  for (; value > 0x7F; value >>= 7) encoded += static_cast<char>((value & 0x7F) | 0x80);
  return encoded + static_cast<char>(value);
}
/// A length-delimited field of a message.
inline std::string field(int number, const std::string& bytes) {
  return static_cast<char>(number << 3 | 2) + varint(bytes.size()) + bytes;
}
inline std::string translatedString(const std::string& text) { return field(1, field(1, text)); }
/// A feed entity with an alert for one route. `moreFields` are other fields of the alert, encoded.
inline std::string alertEntity(const std::string& id, const std::string& route, const std::string& header,
                               const std::string& moreFields = "") {
  return field(2, field(1, id) +
                      field(5, moreFields + field(5, field(2, route)) + field(10, translatedString(header))));
}
/// An active period until `end`, in seconds since 1970.
inline std::string activeUntil(std::size_t end) { return field(1, "\x10" + varint(end)); }
/// A feed of these entities.
inline std::string alertsFeed(const std::string& entities) { return field(1, field(1, "2.0")) + entities; }

}  // namespace linewatch::app
