#pragma once

#include <string>
#include <string_view>

namespace linewatch {

/// A feed's colour as six upper-case hexadecimal digits, red first, without a leading "#"; empty when the
/// text is no colour.
std::string normalizedColor(std::string_view text);

/// The contrast ratio of two normalized colours after WCAG 2, from 1 to 21.
double contrastRatio(std::string_view a, std::string_view b);

/// The colour for a shield's text: `wanted` if its contrast suffices, else white or black, whichever has more
/// contrast. Colours are normalized; `wanted` may be empty.
std::string readableTextColor(std::string_view wanted, std::string_view background);

}  // namespace linewatch
