#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace linewatch {

/// Describes a line's shield.
struct ShieldDataSource {
  /// The shield's shape: a `TransitMode`, or a number that an artwork manager knows.
  std::int64_t shieldType = 0;
  std::optional<std::string> shieldText;
  /// The shield's fill, six hexadecimal digits, red first.
  std::optional<std::string> shieldColorString;
  /// The text's colour in the same form; absent: black or white, whichever is easier to read.
  std::optional<std::string> textColorString;

  bool operator==(const ShieldDataSource&) const = default;
};

/// Describes the icon of a line or a mode of transport. `defaultTransitType` is a `TransitMode`; the artwork
/// managers give the other numbers their meaning.
struct IconDataSource {
  std::int64_t iconType = 0;
  std::int64_t cartoID = 0;
  std::int64_t defaultTransitType = 0;
  std::int64_t iconAttributeKey = 0;
  std::int64_t iconAttributeValue = 0;

  bool operator==(const IconDataSource&) const = default;
};

/// Describes the artwork of a line, a system or a mode: a shield, an icon, or an icon with a fallback shield.
/// Immutable once shared. The artwork cache draws it.
struct TransitArtworkDataSource {
  std::int64_t artworkSourceType = 0;
  std::int64_t artworkUseType = 0;
  std::optional<ShieldDataSource> shieldDataSource;
  std::optional<IconDataSource> iconDataSource;
  std::optional<ShieldDataSource> iconFallbackShieldDataSource;
  bool hasRoutingIncidentBadge = false;
  /// Read aloud by a screen reader in place of the artwork; absent when there is no such text.
  std::optional<std::string> accessibilityText;
  /// The width in points at shield size 3; absent: as wide as the text needs.
  std::optional<double> intrinsicWidth;

  bool operator==(const TransitArtworkDataSource&) const = default;
};

/// A hash of the fields in which most artworks differ.
std::size_t hash(const TransitArtworkDataSource& artwork);
/// A hash of all fields, for tables in which many artworks may differ only in the other fields.
std::size_t hashOfAllFields(const TransitArtworkDataSource& artwork);

/// Values of `artworkSourceType`.
inline constexpr std::int64_t kArtworkSourceShield = 1;
inline constexpr std::int64_t kArtworkSourceIcon = 2;

/// Values of `ShieldDataSource::shieldType` and `IconDataSource::defaultTransitType`. Each mode of transport
/// has its own shape and icon.
enum class TransitMode : std::int64_t { other = 0, bus, tram, metro, rail, ferry, cable, air };

using SharedArtwork = std::shared_ptr<const TransitArtworkDataSource>;

}  // namespace linewatch
