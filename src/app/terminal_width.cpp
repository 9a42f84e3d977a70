#include "app/terminal_width.h"

#include <algorithm>
#include <cstdint>

#include <unicode/uchar.h>

#include "feeds/text/utf8.h"

namespace linewatch::app {

namespace {

constexpr UChar32 kFirstCombining = 0x300;
constexpr UChar32 kZeroWidthJoiner = 0x200D;
constexpr UChar32 kEmojiVariation = 0xFE0F;

bool isWide(UChar32 character) {
  const int width = u_getIntPropertyValue(character, UCHAR_EAST_ASIAN_WIDTH);
  return width == U_EA_WIDE || width == U_EA_FULLWIDTH;
}

bool isUnseen(UChar32 character) {
  const int category = u_charType(character);
  if (category == U_NON_SPACING_MARK || category == U_ENCLOSING_MARK || category == U_FORMAT_CHAR)
    return true;
  const int syllable = u_getIntPropertyValue(character, UCHAR_HANGUL_SYLLABLE_TYPE);
  return syllable == U_HST_VOWEL_JAMO || syllable == U_HST_TRAILING_JAMO;
}

bool isRegionalIndicator(UChar32 character) {
  return u_hasBinaryProperty(character, UCHAR_REGIONAL_INDICATOR) != 0;
}

/// Adds up the columns of a text, character by character.
class Columns {
 public:
  /// The columns that the character adds. A character without any belongs to the one before it.
  std::size_t add(UChar32 character) {
    const std::size_t added = character < kFirstCombining ? 1 : columnsOf(character);
    if (added > 0) lastWidth_ = added;
    isFlagOpen_ = !isFlagOpen_ && isRegionalIndicator(character);
    isJoined_ = character == kZeroWidthJoiner;
    return added;
  }

 private:
  std::size_t columnsOf(UChar32 character) {
    if (character == kEmojiVariation && lastWidth_ == 1) return widenLast();
    if (isUnseen(character)) return 0;
    if (isRegionalIndicator(character)) return isFlagOpen_ ? 0 : 2;
    if (isJoined_ && u_hasBinaryProperty(character, UCHAR_EXTENDED_PICTOGRAPHIC)) return 0;
    if (u_hasBinaryProperty(character, UCHAR_EMOJI_MODIFIER) && lastWidth_ == 2) return 0;
    return isWide(character) ? 2 : 1;
  }
  /// A sign that is shown as an emoji has two columns instead of one.
  std::size_t widenLast() {
    lastWidth_ = 2;
    return 1;
  }

  std::size_t lastWidth_ = 0;
  bool isFlagOpen_ = false;
  bool isJoined_ = false;
};

std::vector<std::string_view> words(std::string_view text) {
  std::vector<std::string_view> all;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = std::min(text.find(' ', start), text.size());
    if (end > start) all.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return all;
}

/// The beginning of the text that fits the columns, at least one character with all that belongs to it.
std::string_view fittingPart(std::string_view text, std::size_t columns) {
  Columns counted;
  std::size_t width = 0;
  for (std::string_view rest = text; !rest.empty();) {
    const std::size_t start = text.size() - rest.size();
    const std::size_t added = counted.add(takeCharacter(rest));
    width += added;
    if (added > 0 && width > columns && start > 0) return text.substr(0, start);
  }
  return text;
}

}  // namespace

std::size_t terminalWidth(std::string_view text) {
  Columns counted;
  std::size_t width = 0;
  while (!text.empty()) width += counted.add(takeCharacter(text));
  return width;
}

std::vector<std::string> wrapped(std::string_view text, std::size_t columns) {
  if (columns == 0) return {std::string(text)};
  std::vector<std::string> lines(1);
  std::size_t width = 0;
  for (std::string_view word : words(text)) {
    std::size_t wordWidth = terminalWidth(word);
    if (width > 0 && width + 1 + wordWidth > columns) {
      lines.emplace_back();
      width = 0;
    }
    while (wordWidth > columns) {
      const std::string_view part = fittingPart(word, columns);
      if (part.size() == word.size()) break;
      lines.back() += part;
      lines.emplace_back();
      word.remove_prefix(part.size());
      wordWidth = terminalWidth(word);
    }
    if (width > 0) lines.back() += ' ';
    width += (width > 0 ? 1 : 0) + wordWidth;
    lines.back() += word;
  }
  return lines;
}

}  // namespace linewatch::app
