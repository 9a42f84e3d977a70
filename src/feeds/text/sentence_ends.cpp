#include "feeds/text/sentence_ends.h"

#include <algorithm>
#include <cstddef>

#include <unicode/uchar.h>

#include "feeds/text/utf8.h"

namespace linewatch {

namespace {

/// The last character before any closing brackets and quotation marks; 0 when there are too many of them.
std::int32_t lastBeforeClosers(std::string_view text) {
  constexpr std::size_t kMostClosers = 16;  // bytes
  text.remove_prefix(text.size() - std::min(text.size(), kMostClosers));
  std::int32_t last = 0;
  while (!text.empty()) {
    const std::int32_t character = takeCharacter(text);
    if (!isCloser(character)) last = character;
  }
  return last;
}

}  // namespace

bool isTerminator(std::int32_t character) {
  return character == '.' || character == '!' || character == '?' || character == 0x2026;
}

bool isFullWidthTerminator(std::int32_t character) {
  return character == 0x3002 || character == 0xFF01 || character == 0xFF1F;
}

bool isCloser(std::int32_t character) {
  constexpr std::u32string_view kClosers = U")]}\"'»”’";
  return kClosers.find(static_cast<char32_t>(character)) != std::u32string_view::npos;
}

bool startsLowerCase(std::string_view text) { return !text.empty() && u_islower(takeCharacter(text)) != 0; }

std::string_view lastWord(std::string_view text) {
  const std::size_t before = text.find_last_of(" \n([/\"");
  return before == std::string_view::npos ? text : text.substr(before + 1);
}

bool endsSentence(std::string_view text) {
  const std::int32_t last = lastBeforeClosers(text);
  return isTerminator(last) || isFullWidthTerminator(last);
}

std::string_view jointAfter(std::string_view text) {
  if (text.empty() || isFullWidthTerminator(lastBeforeClosers(text))) return "";
  return endsSentence(text) ? " " : ". ";
}

}  // namespace linewatch
