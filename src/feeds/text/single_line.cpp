#include "feeds/text/single_line.h"

#include <algorithm>

#include <unicode/uchar.h>

#include "feeds/text/hidden_characters.h"
#include "feeds/text/utf8.h"

namespace linewatch {

namespace {

bool isPrintableAscii(char byte) { return byte >= ' ' && byte <= '~'; }

bool isSingleLine(std::string_view text) {
  return std::all_of(text.begin(), text.end(), isPrintableAscii) &&
         text.find("  ") == std::string_view::npos && !text.starts_with(' ') && !text.ends_with(' ');
}

}  // namespace

std::string singleLine(std::string_view text) {
  if (isSingleLine(text)) return std::string(text);
  std::string line;
  bool gap = false;
  bool isVisible = false;
  while (!text.empty()) {
    const UChar32 character = takeCharacter(text);
    if (u_isUWhiteSpace(character)) {
      gap = true;
    } else if (!isHiddenCharacter(character)) {
      isVisible = isVisible || isVisibleCharacter(character);
      if (gap && !line.empty()) line.push_back(' ');
      gap = false;
      appendCharacter(line, character);
    }
  }
  return isVisible ? line : std::string();
}

}  // namespace linewatch
