#pragma once

#include <functional>
#include <string_view>

namespace linewatch {

/// Gives `take` the sentences of plain text, each on one line, until it returns false. A list that a colon
/// announces is one sentence: "Stops: A, B". Lines that were only wrapped go together. Where a full stop may
/// also end an abbreviation, the sentence goes on: too long reads better than cut.
void forEachSentence(std::string_view plainText, const std::function<bool(std::string_view)>& take);

/// True when the text ends as a sentence does, perhaps inside brackets or quotation marks.
bool endsSentence(std::string_view text);

/// What to put between the text and a sentence that follows on the same line; nothing after an empty text.
std::string_view jointAfter(std::string_view text);

}  // namespace linewatch
