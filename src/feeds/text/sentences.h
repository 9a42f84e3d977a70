#pragma once

#include <functional>
#include <string_view>

namespace linewatch {

/// Gives the sentences of plain text to `take`, each on one line, until it returns false. Lines that belong
/// together are joined first. A full stop that may belong to an abbreviation does not end a sentence, because
/// two sentences at once read better than half of one. `language` is the language tag of the text; it may be
/// empty. `take` must not call this function, because a thread has only one break iterator per language.
void forEachSentence(std::string_view plainText, std::string_view language,
                     const std::function<bool(std::string_view)>& take);

}  // namespace linewatch
