#pragma once

#include <functional>
#include <string_view>

namespace linewatch {

/// Puts the lines of plain text together that belong together, and gives each result to `take` until it
/// returns false.
///
/// Joined are: the items of a list below the colon that announces it ("Stops: A, B"), and a line with the
/// next one that was only wrapped. A line counts as wrapped when the next one starts in lower case, when it
/// ends with a word that leads on ("at", "Haltestelle"), or when it reaches the width at which the whole text
/// is wrapped (60 to 90 characters) and has no punctuation at its end. `language` is a language tag; it may
/// be empty.
void forEachJoinedLine(std::string_view plainText, std::string_view language,
                       const std::function<bool(std::string_view)>& take);

}  // namespace linewatch
