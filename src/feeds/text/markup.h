#pragma once

#include <string>
#include <string_view>

namespace linewatch {

// The breaks that tags leave in the text: control characters, which plain text does not keep.
inline constexpr char kMarkupLineBreak = '\x0B';       // two of them are an empty line
inline constexpr char kMarkupBlockBreak = '\x1C';      // a new line, however many there are
inline constexpr char kMarkupParagraphBreak = '\x0C';  // an empty line, however many there are

/// The text of a piece of markup: tags and comments are dropped, tags that end a line leave a break, and
/// entities become their characters. Markup that was escaped twice is undone as well. In a text with tags the
/// line ends of the source are spaces. What only looks like markup ("< 5 min", "A & B", "<b or c>") stays.
std::string textOfMarkup(std::string_view markup);

}  // namespace linewatch
