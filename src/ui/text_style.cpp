#include "ui/text_style.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace linewatch::ui {

namespace {

// In the order of TextStyle: points at the default category.
constexpr std::array kPointSizes = {34.0, 28.0, 22.0, 20.0, 17.0, 17.0, 16.0, 15.0, 13.0, 12.0, 11.0};
// In the order of TextSizeCategory.
constexpr std::array kFactors = {0.82, 0.88, 0.94, 1.0, 1.12, 1.24, 1.35, 1.6, 1.9, 2.3, 2.7, 3.1};
// Large styles grow less: of the points above 20 only half are scaled.
constexpr double kFullyScaledPointSize = 20;
constexpr double kShareAbove = 0.5;
constexpr double kSmallestPointSize = 11;
constexpr double kMostArtworkGrowth = 2.2;

}  // namespace

std::string_view nameOf(TextSizeCategory category) {
  return kTextSizeCategoryNames.at(static_cast<std::size_t>(category));
}

std::optional<TextSizeCategory> textSizeCategoryNamed(std::string_view name) {
  const auto found = std::find(kTextSizeCategoryNames.begin(), kTextSizeCategoryNames.end(), name);
  if (found == kTextSizeCategoryNames.end()) return std::nullopt;
  return static_cast<TextSizeCategory>(found - kTextSizeCategoryNames.begin());
}

double pointSize(TextStyle style, TextSizeCategory category) {
  const double design = kPointSizes.at(static_cast<std::size_t>(style));
  const double growth = kFactors.at(static_cast<std::size_t>(category)) - 1;
  const double scaled =
      std::min(design, kFullyScaledPointSize) + kShareAbove * std::max(0.0, design - kFullyScaledPointSize);
  return std::max(kSmallestPointSize, std::round(design + scaled * growth));
}

double scaleFactor(TextStyle style, TextSizeCategory category) {
  return pointSize(style, category) / pointSize(style, kDefaultTextSizeCategory);
}

double artworkGrowth(TextSizeCategory category) {
  return std::clamp(scaleFactor(TextStyle::body, category), 1.0, kMostArtworkGrowth);
}

}  // namespace linewatch::ui
