#pragma once

#include <string>
#include <string_view>

namespace linewatch {

/// The words of a text in lower case with single spaces around them: "Route 5: Detour!" gives
/// " route 5 detour ". So two wordings can be compared, and words searched. A text without words gives one
/// space.
std::string comparableWords(std::string_view text);

/// Removes everything up to the end of the first word from the text, and returns the word as it is written.
/// Empty when there is no word.
std::string_view takeWord(std::string_view& text);

/// When the text starts with the comparable words `start`, removes them from the text and returns true.
bool takeWords(std::string_view& text, std::string_view start);

}  // namespace linewatch
