#pragma once

#include <cstdint>

#include "wire/codable_message.h"
#include "wire/message_field.h"

namespace linewatch {

#include "wire/message_fields_begin.inc"

/// How the companion application shows the map. A map URL can carry the same options.
class UrlDisplayOptions final : public FieldedMessage<UrlDisplayOptions> {
 public:
  static constexpr std::uint32_t kLastFieldNumber = 6;

  /// The kind of map; 3 is the transit map.
  SCALAR_FIELD(1, std::int32_t, mapType, MapType)
  SCALAR_FIELD(2, bool, showsTraffic, ShowsTraffic)
  /// Degrees.
  SCALAR_FIELD(3, double, centerLatitude, CenterLatitude)
  SCALAR_FIELD(4, double, centerLongitude, CenterLongitude)
  /// The height of the visible map in degrees.
  SCALAR_FIELD(5, double, latitudeSpan, LatitudeSpan)
  /// The direction at the top of the map, in degrees clockwise from north.
  SCALAR_FIELD(6, double, heading, Heading)
};

#include "wire/message_fields_end.inc"

}  // namespace linewatch
