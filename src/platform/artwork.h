#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace linewatch {

/// What a line's shield looks like.
struct ShieldDataSource {
  /// The shield's shape; the numbers are the artwork managers'.
  std::int64_t shieldType = 0;
  std::optional<std::string> shieldText;
  /// The shield's fill, six hexadecimal digits, red first.
  std::optional<std::string> shieldColorString;
  /// The text's colour in the same form; absent means whichever of black and white reads better.
  std::optional<std::string> textColorString;

  bool operator==(const ShieldDataSource&) const = default;
};

/// Which icon stands for a line or a mode of transport; the numbers are the artwork managers'.
struct IconDataSource {
  std::int64_t iconType = 0;
  std::int64_t cartoID = 0;
  std::int64_t defaultTransitType = 0;
  std::int64_t iconAttributeKey = 0;
  std::int64_t iconAttributeValue = 0;

  bool operator==(const IconDataSource&) const = default;
};

/// Describes the artwork of a line, a system or a mode: a shield, an icon, or an icon with a shield to fall
/// back on. Immutable once shared; drawing it is the artwork cache's business.
struct TransitArtworkDataSource {
  std::int64_t artworkSourceType = 0;
  std::int64_t artworkUseType = 0;
  std::optional<ShieldDataSource> shieldDataSource;
  std::optional<IconDataSource> iconDataSource;
  std::optional<ShieldDataSource> iconFallbackShieldDataSource;
  bool hasRoutingIncidentBadge = false;
  /// What a screen reader says instead of the artwork.
  std::optional<std::string> accessibilityText;
  /// The width in points at shield size 3, where the description fixes it; absent means as wide as its text
  /// needs.
  std::optional<double> intrinsicWidth;

  bool operator==(const TransitArtworkDataSource&) const = default;
};

/// Of the fields that identify an artwork.
std::size_t hash(const TransitArtworkDataSource& artwork);
/// Of all fields, for tables in which look-alikes of the same artwork may be many.
std::size_t hashOfAllFields(const TransitArtworkDataSource& artwork);

/// Values of `artworkSourceType`.
inline constexpr std::int64_t kArtworkSourceShield = 1;
inline constexpr std::int64_t kArtworkSourceIcon = 2;

/// Values of `ShieldDataSource::shieldType` and `IconDataSource::defaultTransitType`: one a mode of
/// transport, so that each has a shape and an icon of its own.
enum class TransitMode : std::int64_t { other = 0, bus, tram, metro, rail, ferry, cable, air };

using SharedArtwork = std::shared_ptr<const TransitArtworkDataSource>;

}  // namespace linewatch
