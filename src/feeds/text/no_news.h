#pragma once

#include <string>
#include <string_view>

namespace linewatch {

// Recognises what agencies write beside the news: salutations, headings, thanks and labels. In German,
// English, French, Spanish, Italian, Dutch and Portuguese.

/// The text without the salutation and the polite words that it starts with: "Dear passengers, please note
/// that the lift is closed" gives "the lift is closed".
std::string_view withoutPreamble(std::string_view text);

/// The text without a note at its start that it was updated: "Update 3 May: the lift is closed" gives "the
/// lift is closed".
std::string_view withoutUpdateNote(std::string_view text);

/// The text below a line that is a heading for a change ("What is changing?"); empty when there is none.
std::string_view underChangeHeading(std::string_view plainText);

/// True for a heading for a reason, e.g. "Reason".
bool isReasonHeading(std::string_view sentence);

/// True for a sentence without news: a heading ("What's happening?"), a direction alone ("Affected direction:
/// Eastbound"), lines alone ("Affected routes: 5, 7"), a reference to a map, thanks and apologies.
bool isNoNews(std::string_view sentence);

/// The text without the fields at its start that are empty or already known: below "Route 5 detour", "Route:
/// 5 Cause: works" gives "Cause: works". `known` is given as comparable words.
std::string_view withoutKnownFields(std::string_view text, std::string_view known);

/// The text with its first letter in upper case, unless the first word is an address or has an upper
/// case letter further on ("iBus").
std::string capitalized(std::string_view text);

}  // namespace linewatch
