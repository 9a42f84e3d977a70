#pragma once

#include <string>
#include <string_view>

namespace linewatch {

// What stands in text that was markup where a tag breaks it: control characters that text does not keep.
inline constexpr char kMarkupLineBreak = '\x0B';       // two of them are an empty line
inline constexpr char kMarkupBlockBreak = '\x1C';      // a new line, however many there are
inline constexpr char kMarkupParagraphBreak = '\x0C';  // an empty line, however many there are

/// The text in a piece of markup: tags and comments dropped, breaks in place of those that break, characters
/// in place of their names and numbers. Markup that was escaped once too often is undone as well. What only
/// looks like markup ("< 5 min", "A & B") stays.
std::string textOfMarkup(std::string_view markup);

}  // namespace linewatch
