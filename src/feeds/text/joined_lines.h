#pragma once

#include <functional>
#include <string_view>

namespace linewatch {

/// Joins the lines of plain text that belong together, and gives each result to `take` until it returns
/// false.
///
/// The items of a list are joined with the line above that ends with a colon: "Stops: A, B". A wrapped line
/// is joined with the next one. A line counts as wrapped when
///  - the next one starts in lower case,
///  - it ends with a word that needs another behind it ("at", "Haltestelle"), or
///  - it is as long as the full lines of the text (60 to 90 characters) and ends without punctuation.
/// `language` is a language tag; it may be empty.
void forEachJoinedLine(std::string_view plainText, std::string_view language,
                       const std::function<bool(std::string_view)>& take);

}  // namespace linewatch
