#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace linewatch {

/// The name of a country in a language, e.g. "Deutschland" for "DE" in "de". The code itself when the country
/// or the language has no name for it.
std::string countryName(std::string_view code, std::string_view language);

/// The country's names in the languages of the user interface and in its own most spoken one, in no order and
/// maybe several times. Empty for a code that names no country.
std::vector<std::string> countryNames(std::string_view code);

}  // namespace linewatch
