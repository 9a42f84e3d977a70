#pragma once

#include <cctype>
#include <string_view>

#include "shared/value.h"

namespace linewatch {

/// The bytes of the hexadecimal digits. Other characters, such as spaces and bars, are ignored.
inline Bytes hex(std::string_view digits) {
  Bytes bytes;
  bool isHalf = false;
  for (const char c : digits) {
    if (std::isxdigit(static_cast<unsigned char>(c)) == 0) continue;
    const int value = std::isdigit(static_cast<unsigned char>(c)) != 0 ? c - '0' : (c | 0x20) - 'a' + 10;
    if (isHalf) {
      bytes.back() = static_cast<std::uint8_t>(bytes.back() << 4 | value);
    } else {
      bytes.push_back(static_cast<std::uint8_t>(value));
    }
    isHalf = !isHalf;
  }
  return bytes;
}

}  // namespace linewatch
