#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace linewatch {

/// The names of an enumeration's values 0, 1, 2 …; specialised for each enumeration that messages hold.
template <class Enumeration>
inline constexpr std::array<std::string_view, 0> kEnumerationNames{};

/// An enumeration with named int32 values. A message also keeps values without a name that it has read.
template <class T>
concept MessageEnumeration = std::is_enum_v<T> && std::same_as<std::underlying_type_t<T>, std::int32_t>;

/// The value's name, or "(unknown: 7)" for a value without one.
template <MessageEnumeration Enumeration>
std::string enumerationAsString(Enumeration value) {
  constexpr auto& names = kEnumerationNames<Enumeration>;
  const auto number = static_cast<std::int32_t>(value);
  if (number >= 0 && static_cast<std::size_t>(number) < names.size()) return std::string(names[number]);
  return "(unknown: " + std::to_string(number) + ")";
}

/// The value with exactly this name; 0 for any other text.
template <MessageEnumeration Enumeration>
Enumeration stringAsEnumeration(std::string_view name) {
  constexpr auto& names = kEnumerationNames<Enumeration>;
  for (std::int32_t value = 0; static_cast<std::size_t>(value) < names.size(); ++value)
    if (names[value] == name) return Enumeration{value};
  return Enumeration{0};
}

}  // namespace linewatch
