#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace linewatch {

/// An agency's text as plain text: markup is undone, hidden characters (controls, direction overrides, tags,
/// fillers) are dropped, white space is folded, and bytes that are no UTF-8 become U+FFFD. Lines end with one
/// line feed, paragraphs with two. There is no white space around the text. A text without a visible
/// character is empty.
std::string plainText(std::string_view written);

/// The address of a page that may be opened: http or https, without spaces. Absent for anything else.
std::optional<std::string> webAddress(std::string_view written);

}  // namespace linewatch
