#pragma once

#include <string>
#include <string_view>

namespace linewatch {

// Control characters that stand for the line breaks of tags.
inline constexpr char kMarkupLineBreak = '\x0B';       // two of them make an empty line
inline constexpr char kMarkupBlockBreak = '\x1C';      // one or more make a new line
inline constexpr char kMarkupParagraphBreak = '\x0C';  // one or more make an empty line

/// The text of HTML markup, also of markup that was escaped twice. Tags and comments are dropped, tags that
/// end a line become one of the characters above, and entities become their characters. In a text with tags,
/// line ends become spaces. Text that only resembles markup stays: "< 5 min", "A & B", "<b or c>".
std::string textOfMarkup(std::string_view markup);

}  // namespace linewatch
