#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace linewatch {

/// The character that an HTML entity names ("eacute"). Absent for a name that HTML 4 does not have.
std::optional<std::int32_t> namedCharacter(std::string_view name);

/// The character of a numeric entity ("&#233;"). As in browsers, 128 to 159 are characters of Windows-1252,
/// and numbers without a character give U+FFFD.
std::int32_t numberedCharacter(std::int32_t number);

}  // namespace linewatch
