#pragma once

#include <string>
#include <string_view>

namespace linewatch {

/// The end of a text that was cut.
inline constexpr std::string_view kEllipsis = "\xE2\x80\xA6";

// All texts are plain text. `language` is the language tag of the text; it may be empty.

/// A header on one line, without salutation and web addresses.
std::string rowTitle(std::string_view header, std::string_view language);

/// The first sentences of a description that say something new: more than the title, a heading, a salutation
/// or a reference to a page or map. One or a few sentences, whole unless they are endless. Empty when nothing
/// is new.
std::string rowSecondaryText(std::string_view description, std::string_view title, std::string_view language);

/// The first sentence of a description that says something new, to stand in for a title. Empty when there is
/// none, or when it is too long for a title.
std::string titleFromText(std::string_view description, std::string_view language);

/// Cuts a text that is endless at a word, with an ellipsis.
std::string cutToRow(std::string text);

/// Appends a sentence behind a full stop and a space.
void appendSentence(std::string& text, std::string_view sentence);

/// True when the title has all the words of the text, in their order.
bool titleSays(std::string_view title, std::string_view text);

/// True when the title says no more than the shield and the name of a line do, as "17 Harbour Street" for the
/// line "17". A train by its category and number ("IR 36") is a title.
bool onlyNamesLine(std::string_view title, std::string_view shortName, std::string_view longName);

}  // namespace linewatch
