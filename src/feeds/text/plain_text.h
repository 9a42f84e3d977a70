#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace linewatch {

/// What an agency wrote as plain text: markup undone, control characters and those that override the
/// direction of writing dropped, white space folded, U+FFFD for what is no UTF-8. Lines end with one line
/// feed, paragraphs with two; nothing stands around them.
std::string plainText(std::string_view written);

/// The address of a page that may be opened: of http or https, without a blank. Absent for anything else.
std::optional<std::string> webAddress(std::string_view written);

}  // namespace linewatch
