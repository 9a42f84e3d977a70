#pragma once

#include <cstdint>
#include <string_view>

namespace linewatch {

/// A full stop, exclamation mark, question mark or ellipsis.
bool isTerminator(std::int32_t character);
/// A full stop, exclamation mark or question mark of a script that has no space between sentences.
bool isFullWidthTerminator(std::int32_t character);
/// A closing bracket or quotation mark.
bool isCloser(std::int32_t character);

bool startsLowerCase(std::string_view text);

/// The last word: what follows the last space, quotation mark or opening bracket.
std::string_view lastWord(std::string_view text);

/// True when the text ends with a terminator, also inside brackets or quotation marks.
bool endsSentence(std::string_view text);

/// What to put between the text and a sentence behind it: a space, with a full stop if the text has none at
/// its end. Empty after an empty text.
std::string_view jointAfter(std::string_view text);

}  // namespace linewatch
