#pragma once

#include <string>
#include <string_view>

namespace linewatch {

/// What ends a text that was cut.
inline constexpr std::string_view kEllipsis = "\xE2\x80\xA6";

/// A header, as plain text, on one line.
std::string rowTitle(std::string_view header);

/// The first sentences of a description, as plain text, that say something which the title does not: one or a
/// few, whole where they are not endless. Addresses of pages are left to the details. Empty when there is
/// nothing new.
std::string rowSecondaryText(std::string_view description, std::string_view title);

/// True when the title has all the words of the text, in their order.
bool titleSays(std::string_view title, std::string_view text);

}  // namespace linewatch
