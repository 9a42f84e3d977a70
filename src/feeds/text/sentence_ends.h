#pragma once

#include <cstdint>
#include <string_view>

namespace linewatch {

/// A full stop, exclamation mark, question mark or ellipsis.
bool isTerminator(std::int32_t character);
/// A terminator of scripts that put no space behind a sentence.
bool isFullWidthTerminator(std::int32_t character);
/// A closing bracket or quotation mark.
bool isCloser(std::int32_t character);

bool startsLowerCase(std::string_view text);

/// The word that ends the text, from a space, quotation mark or opening bracket on.
std::string_view lastWord(std::string_view text);

/// True when the text ends as a sentence does, perhaps inside brackets or quotation marks.
bool endsSentence(std::string_view text);

/// What to put between the text and a sentence that follows on the same line; nothing after an empty text.
std::string_view jointAfter(std::string_view text);

}  // namespace linewatch
