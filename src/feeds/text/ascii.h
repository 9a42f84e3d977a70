#pragma once

namespace linewatch {

// For single bytes, in any locale. The bytes of a character outside ASCII belong to no class and stay
// unchanged.

constexpr bool isAsciiDigit(char byte) { return byte >= '0' && byte <= '9'; }
constexpr bool isAsciiCapital(char byte) { return byte >= 'A' && byte <= 'Z'; }
constexpr bool isAsciiSmall(char byte) { return byte >= 'a' && byte <= 'z'; }
constexpr bool isAsciiAlphanumeric(char byte) {
  return isAsciiDigit(byte) || isAsciiCapital(byte) || isAsciiSmall(byte);
}
constexpr char asciiSmall(char byte) {
  return isAsciiCapital(byte) ? static_cast<char>(byte - 'A' + 'a') : byte;
}
constexpr char asciiCapital(char byte) {
  return isAsciiSmall(byte) ? static_cast<char>(byte - 'a' + 'A') : byte;
}

}  // namespace linewatch
