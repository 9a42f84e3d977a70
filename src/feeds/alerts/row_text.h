#pragma once

#include <string>
#include <string_view>

namespace linewatch {

/// The end of a text that was cut.
inline constexpr std::string_view kEllipsis = "\xE2\x80\xA6";

// All texts are plain text. `language` is the language tag of the text; it may be empty.

/// A header on one line, without salutation and web addresses.
std::string rowTitle(std::string_view header, std::string_view language);

/// The first sentences of a description with news: not the title, headings, salutations or references to
/// pages and maps. One or a few whole sentences. Empty when there is no news.
std::string rowSecondaryText(std::string_view description, std::string_view title, std::string_view language);

/// The first sentence of a description that says something new, to stand in for a title. Empty when there is
/// none, or when it is too long for a title.
std::string titleFromText(std::string_view description, std::string_view language);

/// Cuts a text that is too long for any row (400 characters), at an item of a list or at a word.
std::string cutToRow(std::string text);

/// Appends a sentence, with a space and if need be a full stop before it.
void appendSentence(std::string& text, std::string_view sentence);

/// True when the title has all the words of the text, in their order.
bool titleSays(std::string_view title, std::string_view text);

/// True when the title has no words beyond the names of its line: "17 Harbour Street" for the line "17".
/// False for the category and number of a train ("IR 36"), because riders call it so.
bool onlyNamesLine(std::string_view title, std::string_view shortName, std::string_view longName);

}  // namespace linewatch
