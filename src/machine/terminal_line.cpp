#include "machine/terminal_line.h"

#include <algorithm>
#include <cstddef>

namespace linewatch {

namespace {

/// The length of a UTF-8 character with this first byte; 1 for any other byte.
std::size_t sequenceLength(unsigned char first) {
  if (first >= 0xC2 && first <= 0xDF) return 2;
  if (first >= 0xE0 && first <= 0xEF) return 3;
  return first >= 0xF0 && first <= 0xF4 ? 4 : 1;
}

bool isContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

/// The length of the text's first character, at least 1. Missing continuation bytes do not count.
std::size_t firstCharacter(std::string_view text) {
  const std::size_t wanted = std::min(text.size(), sequenceLength(static_cast<unsigned char>(text.front())));
  std::size_t length = 1;
  while (length < wanted && isContinuation(text[length])) ++length;
  return length;
}

/// C0 and C1 controls, DEL, U+2028 to U+202E, U+2066 and U+2067. The isolates U+2068 and U+2069 are harmless:
/// they leave the direction to the text, and end with the line. A lone byte from 80 to 9F is not UTF-8, but a
/// terminal of another encoding takes it for a C1 control.
bool actsOnTerminal(std::string_view character) {
  const auto last = static_cast<unsigned char>(character.back());
  if (character.size() == 1) return last < 0x20 || (last >= 0x7F && last < 0xA0);
  const std::string_view lead = character.substr(0, character.size() - 1);
  if (lead == "\xC2") return last < 0xA0;
  if (lead == "\xE2\x80") return last >= 0xA8 && last <= 0xAE;
  return lead == "\xE2\x81" && last >= 0xA6 && last <= 0xA7;
}

}  // namespace

std::string terminalLine(std::string_view text) {
  std::string line;
  line.reserve(text.size());
  while (!text.empty()) {
    const std::string_view character = text.substr(0, firstCharacter(text));
    text.remove_prefix(character.size());
    if (actsOnTerminal(character)) {
      line += ' ';
    } else {
      line += character;
    }
  }
  return line;
}

}  // namespace linewatch
