#include "simulation/roles/simulated_artwork.h"

#include <algorithm>
#include <utility>

namespace linewatch::simulation {

namespace {

constexpr double kHeightAtStep3 = 20;
constexpr double kIconWidth = 20;
constexpr double kShieldPadding = 10;
constexpr double kCodePointWidth = 8;

double factorOfStep(std::int64_t step) { return std::max(0.0, 1 + (static_cast<double>(step) - 3) / 8); }

// In malformed UTF-8, every byte that could start a code point counts.
double codePointsIn(const std::string& text) {
  const auto isFirstByte = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; };
  return static_cast<double>(std::count_if(text.begin(), text.end(), isFirstByte));
}

/// The width that the world gives an artwork; absent when it gives none.
template <class IsIt>
std::optional<double> drawnWidth(const World& world, IsIt&& isIt) {
  for (const auto& [key, artwork] : world.drawnArtworks) {
    if (artwork.intrinsicWidth && isIt(artwork)) return artwork.intrinsicWidth;
  }
  return std::nullopt;
}

}  // namespace

SimulatedArtworkImage::SimulatedArtworkImage(std::string name, double widthAtStep3, std::int64_t step)
    : name_(std::move(name)), size_{widthAtStep3 * factorOfStep(step), kHeightAtStep3 * factorOfStep(step)} {}

std::shared_ptr<const ui::Image> SimulatedShieldManager::image(const ShieldDataSource& shield,
                                                               std::optional<double> widthAtStep3,
                                                               const ArtworkSize& size) {
  const std::string text = shield.shieldText.value_or("");
  if (!widthAtStep3)
    widthAtStep3 = drawnWidth(backstage_->world, [&shield](const TransitArtworkDataSource& artwork) {
      const auto& drawn = artwork.shieldDataSource;
      return drawn && drawn->shieldType == shield.shieldType && drawn->shieldText == shield.shieldText;
    });
  const double width = widthAtStep3.value_or(kShieldPadding + kCodePointWidth * codePointsIn(text));
  return std::make_shared<const SimulatedArtworkImage>(text, width, size.step);
}

void SimulatedShieldManager::purge() { backstage_->transcript->record("cachePurged"); }

std::shared_ptr<const ui::Image> SimulatedIconManager::image(const IconDataSource& icon,
                                                             std::optional<double> widthAtStep3,
                                                             const ArtworkSize& size) {
  if (!widthAtStep3 && backstage_)
    widthAtStep3 = drawnWidth(backstage_->world, [&icon](const TransitArtworkDataSource& artwork) {
      return artwork.iconDataSource == icon;
    });
  return std::make_shared<const SimulatedArtworkImage>("icon", widthAtStep3.value_or(kIconWidth), size.step);
}

}  // namespace linewatch::simulation
