#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace linewatch::ui {

/// The purpose of a text, which decides its size.
enum class TextStyle : std::uint8_t {
  largeTitle,
  title1,
  title2,
  title3,
  headline,
  body,
  callout,
  subheadline,
  footnote,
  caption1,
  caption2
};

/// The text sizes a user can choose, smallest first. The last five are for accessibility.
enum class TextSizeCategory : std::uint8_t { XS, S, M, L, XL, XXL, XXXL, AX1, AX2, AX3, AX4, AX5 };

inline constexpr TextSizeCategory kDefaultTextSizeCategory = TextSizeCategory::L;
inline constexpr std::array<std::string_view, 12> kTextSizeCategoryNames = {
    "XS", "S", "M", "L", "XL", "XXL", "XXXL", "AX1", "AX2", "AX3", "AX4", "AX5"};

std::string_view nameOf(TextSizeCategory category);
/// Absent for an unknown name.
std::optional<TextSizeCategory> textSizeCategoryNamed(std::string_view name);

/// The size of the style's text in points.
double pointSize(TextStyle style, TextSizeCategory category);
/// The style's point size relative to the default category.
double scaleFactor(TextStyle style, TextSizeCategory category);
/// The size of artwork beside texts, relative to the default category: at least 1. The largest texts grow
/// more than artwork, because they need the room.
double artworkGrowth(TextSizeCategory category);

}  // namespace linewatch::ui
