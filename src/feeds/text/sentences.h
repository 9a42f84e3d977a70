#pragma once

#include <functional>
#include <string_view>

namespace linewatch {

/// Gives `take` the sentences of plain text, each on one line, until it returns false. Lines that belong
/// together are joined first. Where a full stop may also end an abbreviation, the sentence goes on: too long
/// reads better than cut. `language` is the language tag of the text; it may be empty. `take` must not cut
/// sentences itself: each thread has one break iterator a language.
void forEachSentence(std::string_view plainText, std::string_view language,
                     const std::function<bool(std::string_view)>& take);

}  // namespace linewatch
