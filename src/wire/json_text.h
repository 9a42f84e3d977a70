#pragma once

#include <string>
#include <string_view>

#include "shared/value.h"

namespace linewatch {

/// The value as JSON text on one line, with a space after each colon and comma.
///
/// The same value gives the same text everywhere: keys in byte order, and numbers with the fewest digits that
/// read back as the same number, whole numbers without a point. Bytes are base64, and an object is its
/// description. An absent object and a number that is not finite are null. Bytes of a text that are not UTF-8
/// become U+FFFD. Control characters are escaped, also DEL and those from U+0080 to U+009F.
std::string jsonText(const Value& value);
std::string jsonText(const Dictionary& dictionary);

/// The text as a JSON string, in quotes and escaped.
std::string jsonQuoted(std::string_view text);

}  // namespace linewatch
