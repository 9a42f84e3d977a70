#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace linewatch::desktop {

/// The sentences of plain text, each on one line. A list that a colon announces is one sentence: "Stops: A,
/// B". Lines that were only wrapped go together. Where a full stop may also end an abbreviation, the sentence
/// goes on: too long reads better than cut.
std::vector<std::string> sentencesOf(std::string_view plainText);

/// True when the text ends as a sentence does, perhaps inside brackets or quotation marks.
bool endsSentence(std::string_view text);

}  // namespace linewatch::desktop
