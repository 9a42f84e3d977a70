#include "feeds/text/comparable_words.h"

#include <cstddef>
#include <cstdint>

#include <unicode/uchar.h>

#include "feeds/text/ascii.h"
#include "feeds/text/utf8.h"

namespace linewatch {

namespace {

bool isWordCharacter(std::int32_t character) {
  if (character < 0x80) return isAsciiAlphanumeric(static_cast<char>(character));
  return u_isalnum(character) != 0 || u_charType(character) == U_NON_SPACING_MARK;
}

void appendFolded(std::string& words, std::int32_t character) {
  if (character < 0x80) {
    words += asciiSmall(static_cast<char>(character));
  } else {
    appendCharacter(words, u_foldCase(character, U_FOLD_CASE_DEFAULT));
  }
}

}  // namespace

std::string comparableWords(std::string_view text) {
  std::string words = " ";
  while (!text.empty()) {
    const std::int32_t character = takeCharacter(text);
    if (isWordCharacter(character)) {
      appendFolded(words, character);
    } else if (words.back() != ' ') {
      words += ' ';
    }
  }
  if (words.back() != ' ') words += ' ';
  return words;
}

std::string_view takeWord(std::string_view& text) {
  std::string_view rest = text;
  while (!rest.empty()) {
    const std::string_view here = rest;
    if (!isWordCharacter(takeCharacter(rest))) {
      text = rest;
      continue;
    }
    std::size_t length = here.size() - rest.size();
    while (!rest.empty() && isWordCharacter(takeCharacter(rest))) length = here.size() - rest.size();
    text = here.substr(length);
    return here.substr(0, length);
  }
  text = {};
  return {};
}

bool takeWords(std::string_view& text, std::string_view start) {
  std::string_view rest = text;
  for (std::size_t length = 0; (length = start.find(' ', 1)) != std::string_view::npos;) {
    const std::string_view word = takeWord(rest);
    if (word.empty() || comparableWords(word) != start.substr(0, length + 1)) return false;
    start.remove_prefix(length);
  }
  text = rest;
  return true;
}

}  // namespace linewatch
