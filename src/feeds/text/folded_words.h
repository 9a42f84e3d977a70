#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace linewatch {

/// The text as a search compares it: case, accents and the forms of one letter make no difference ("Łódź",
/// "LODZ" and "lodz" are one). UTF-8.
std::string folded(std::string_view text);

/// The runs of letters, digits and their marks, as pieces of the text, in its order.
std::vector<std::string_view> wordsOf(std::string_view text);

/// A name as a search compares it: its folded words, whatever stands between them. A name of signs alone is
/// compared as it is.
std::string comparableName(std::string_view name);

/// Orders folded texts as people count: runs of digits by their number, so that "9" comes before "10".
bool naturallyBefore(std::string_view a, std::string_view b);

}  // namespace linewatch
