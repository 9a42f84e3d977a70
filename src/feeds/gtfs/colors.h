#pragma once

#include <string>
#include <string_view>

namespace linewatch {

/// A feed's colour as six upper-case hexadecimal digits, red first, whether or not it comes with a "#"; empty
/// when it is none.
std::string normalizedColor(std::string_view text);

/// How well two normalized colours can be told apart: the contrast ratio of WCAG 2, from 1 to 21.
double contrastRatio(std::string_view a, std::string_view b);

/// The colour for a shield's text: the wanted one where it can be read, else whichever of white and black is
/// read better. Colours are normalized; `wanted` may be empty.
std::string readableTextColor(std::string_view wanted, std::string_view background);

}  // namespace linewatch
