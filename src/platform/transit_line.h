#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/artwork.h"
#include "platform/map_item_identifier.h"
#include "platform/transit_incident.h"

namespace linewatch {

/// The system or agency that runs a line. Immutable once shared. The artwork may be null.
struct TransitSystem {
  std::uint64_t muid = 0;
  std::string name;
  SharedArtwork artwork;

  bool operator==(const TransitSystem&) const = default;
};

/// A rectangle on the map, in degrees.
struct MapRegion {
  double southLatitude = 0, westLongitude = 0, northLatitude = 0, eastLongitude = 0;

  bool operator==(const MapRegion&) const = default;
};

/// A line of public transport. Two records with the same `muid` describe the same line. A record does not
/// change once it is shared. Any thread.
class TransitLine {
 public:
  virtual ~TransitLine() = default;

  virtual std::uint64_t muid() const = 0;
  /// The identifier by which the transit service looks the line up; absent when the line cannot be looked up.
  virtual std::optional<MapItemIdentifier> identifier() const = 0;
  /// May be empty.
  virtual const std::string& name() const = 0;
  /// May be null.
  virtual const std::shared_ptr<const TransitSystem>& system() const = 0;
  virtual std::int64_t departureTimeDisplayStyle() const = 0;
  virtual bool departuresAreVehicleSpecific() const = 0;
  /// The artwork shown beside the line's name, the artwork of its mode of transport, and the artwork shown
  /// instead of the name. Each may be null.
  virtual const SharedArtwork& artwork() const = 0;
  virtual const SharedArtwork& modeArtwork() const = 0;
  virtual const SharedArtwork& alternateArtwork() const = 0;
  virtual bool hasLineColorString() const = 0;
  /// Six hexadecimal digits; empty without a colour.
  virtual const std::string& lineColorString() const = 0;
  virtual bool showVehicleNumber() const = 0;
  /// A text for the user; empty when not known.
  virtual const std::string& operatingHours() const = 0;
};

/// A line with its current incidents, as the transit service answers a look-up.
class TransitLineItem : public TransitLine {
 public:
  virtual const TransitIncidents& incidents() const = 0;
  virtual bool hasIncidentComponent() const = 0;
  /// Whether the incidents are older than the service considers current.
  virtual bool isIncidentsTTLExpired() const = 0;
  virtual std::optional<std::vector<SharedArtwork>> labelItems() const { return std::nullopt; }
  virtual OptionalText attribution() const { return std::nullopt; }
  virtual std::optional<MapRegion> mapRegion() const { return std::nullopt; }
  virtual OptionalText encyclopedicInfo() const { return std::nullopt; }
  virtual bool hasEncyclopedicInfo() const { return false; }
};

using SharedLine = std::shared_ptr<const TransitLine>;
using SharedLineItem = std::shared_ptr<const TransitLineItem>;
using TransitLineItems = std::vector<SharedLineItem>;

/// The identifier by which the transit service looks the line up; absent when it cannot.
std::optional<MapItemIdentifier> mapItemIdentifierForLine(const TransitLine& line);

}  // namespace linewatch
