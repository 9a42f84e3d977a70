#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace linewatch {

inline constexpr std::int32_t kReplacementCharacter = 0xFFFD;

/// Takes the first character off a text, which must not be empty. U+FFFD for bytes that are no UTF-8.
std::int32_t takeCharacter(std::string_view& text);
void appendCharacter(std::string& text, std::int32_t character);
/// The number of characters of valid UTF-8.
std::size_t countCharacters(std::string_view text);

bool isValidUtf8(std::string_view text);
/// The text with U+FFFD in place of all bytes that are no UTF-8.
std::string withValidUtf8(std::string text);

}  // namespace linewatch
