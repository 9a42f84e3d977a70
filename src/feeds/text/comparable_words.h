#pragma once

#include <string>
#include <string_view>

namespace linewatch {

/// The words of a text in lower case, with one space before and behind each, to compare what texts say:
/// "Route 5: Detour!" gives " route 5 detour ". A single space for a text without words.
std::string comparableWords(std::string_view text);

/// Takes the first word off the text, with all that stands before it, and returns it as it is written. Empty
/// when there is none.
std::string_view takeWord(std::string_view& text);

/// True when the text starts with the words of `start`, as comparable words; takes them off the text then.
bool takeWords(std::string_view& text, std::string_view start);

}  // namespace linewatch
