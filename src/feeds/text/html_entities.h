#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace linewatch {

/// The character that HTML calls by a name ("eacute"), or none that texts of agencies are known to use.
std::optional<std::int32_t> namedCharacter(std::string_view name);

/// What a character number of HTML stands for: numbers 128 to 159 are characters of Windows-1252, and U+FFFD
/// is for those of no character.
std::int32_t numberedCharacter(std::int32_t number);

}  // namespace linewatch
