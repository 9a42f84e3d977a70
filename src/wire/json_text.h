#pragma once

#include <string>
#include <string_view>

#include "shared/value.h"

namespace linewatch {

/// The value as JSON text on one line, with a space after each colon and comma.
///
/// The same value gives the same text everywhere: keys in their order, numbers with as few digits as read
/// back to the same number, whole ones without a point. Bytes are base64. What JSON has no form for is null:
/// an absent object, a number that is not finite; an object is its description. Bytes of a text that are not
/// UTF-8 become U+FFFD.
std::string jsonText(const Value& value);
std::string jsonText(const Dictionary& dictionary);

/// The text in quotes, with what JSON does not take as it is escaped.
std::string jsonQuoted(std::string_view text);

}  // namespace linewatch
