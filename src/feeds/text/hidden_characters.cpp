#include "feeds/text/hidden_characters.h"

#include <unicode/uchar.h>

namespace linewatch {

namespace {

constexpr std::int32_t kBrailleBlank = 0x2800;

bool isIgnorable(std::int32_t character) {
  return u_hasBinaryProperty(character, UCHAR_DEFAULT_IGNORABLE_CODE_POINT) != 0;
}

// Zero width joiners, marks of direction that turn no other text, and variation selectors.
bool isNeededByScripts(std::int32_t character) {
  return (character >= 0x200C && character <= 0x200F) || character == 0x061C ||
         u_hasBinaryProperty(character, UCHAR_VARIATION_SELECTOR) != 0;
}

bool isNoCharacter(std::int32_t character) {
  return (character & 0xFFFE) == 0xFFFE || (character >= 0xFDD0 && character <= 0xFDEF);
}

bool isAnnotation(std::int32_t character) { return character >= 0xFFF9 && character <= 0xFFFB; }

}  // namespace

bool isHiddenCharacter(std::int32_t character) {
  if (character < 0xA0) return character < 0x20 || character >= 0x7F;
  if (isNoCharacter(character) || isAnnotation(character) || character == kBrailleBlank) return true;
  return isIgnorable(character) && !isNeededByScripts(character);
}

bool isVisibleCharacter(std::int32_t character) {
  return !isHiddenCharacter(character) && !isIgnorable(character) && u_isUWhiteSpace(character) == 0;
}

}  // namespace linewatch
