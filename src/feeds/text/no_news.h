#pragma once

#include <string>
#include <string_view>

namespace linewatch {

// What agencies write around their news, in German, English, French, Spanish, Italian, Dutch and Portuguese.

/// The text without the salutation that it starts with: "Dear passengers, the lift is closed" gives "the lift
/// is closed".
std::string_view withoutSalutation(std::string_view text);

/// True for a sentence that tells nothing of the service: a heading ("What's happening?"), a direction
/// ("Affected direction: Eastbound"), the lines alone ("Affected routes: 5, 7"), a reference to a map, thanks
/// and apologies.
bool isNoNews(std::string_view sentence);

/// The text without the fields at its start ("Route: 5", "Cause: works") that have no value or say what is
/// known. `known` is a text as comparable words.
std::string_view withoutKnownFields(std::string_view text, std::string_view known);

/// The text with its first letter in upper case, unless the first word has an upper case letter further on
/// ("iBus").
std::string capitalized(std::string_view text);

}  // namespace linewatch
