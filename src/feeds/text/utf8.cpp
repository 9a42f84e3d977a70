#include "feeds/text/utf8.h"

#include <algorithm>

#include <unicode/utf8.h>

namespace linewatch {

namespace {

/// Takes the first character off the text. Negative for bytes that are no UTF-8.
UChar32 taken(std::string_view& text) {
  // The macro converts to narrower types; it masks the values first.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
  std::size_t length = 0;
  UChar32 character = 0;
  U8_NEXT(text.data(), length, text.size(), character);
#pragma GCC diagnostic pop
  text.remove_prefix(length);
  return character;
}

}  // namespace

std::int32_t takeCharacter(std::string_view& text) {
  const UChar32 character = taken(text);
  return character < 0 ? kReplacementCharacter : character;
}

void appendCharacter(std::string& text, std::int32_t character) {
  char bytes[U8_MAX_LENGTH];
  std::size_t length = 0;
  U8_APPEND_UNSAFE(bytes, length, character);
  text.append(bytes, length);
}

std::size_t countCharacters(std::string_view text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char byte) { return U8_IS_TRAIL(byte) == 0; }));
}

bool isValidUtf8(std::string_view text) {
  while (!text.empty()) {
    if (taken(text) < 0) return false;
  }
  return true;
}

std::string withValidUtf8(std::string text) {
  if (isValidUtf8(text)) return text;
  std::string repaired;
  repaired.reserve(text.size());
  for (std::string_view rest = text; !rest.empty();) appendCharacter(repaired, takeCharacter(rest));
  return repaired;
}

}  // namespace linewatch
