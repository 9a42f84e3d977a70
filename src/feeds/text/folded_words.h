#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace linewatch {

/// The text as a search compares it, without case, accents and variant forms: "Łódź", "LODZ" and "lodz" are
/// equal. Takes and returns UTF-8.
std::string folded(std::string_view text);

/// The runs of letters, digits and combining marks, as parts of the text, in its order.
std::vector<std::string_view> wordsOf(std::string_view text);

/// A name as a search compares it: its folded words with one space between them. A name without letters and
/// digits is only folded.
std::string comparableName(std::string_view name);

/// Natural order of folded texts: runs of digits are compared as numbers, so that "9" comes before "10".
bool naturallyBefore(std::string_view a, std::string_view b);

}  // namespace linewatch
