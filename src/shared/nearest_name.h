#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

namespace linewatch {

/// The edit distance: the least number of bytes to add, drop, change or swap with the next one to turn one
/// text into the other.
std::size_t editDistance(std::string_view a, std::string_view b);

/// The greatest edit distance at which a word of this length counts as misspelt: a quarter of it, plus one.
inline std::size_t greatestSlip(std::size_t length) { return length / 4 + 1; }

/// The name that a misspelt word most likely stands for, the first one of equally near names; absent if none
/// is near. ASCII case and the difference between "-" and "_" do not count. A name also fits if the word is
/// its beginning.
std::optional<std::string_view> nearestName(std::string_view word, std::span<const std::string_view> names);

}  // namespace linewatch
