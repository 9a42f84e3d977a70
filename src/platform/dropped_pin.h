#pragma once

#include <cstdint>

#include "wire/codable_message.h"
#include "wire/message_field.h"

namespace linewatch {

#include "wire/message_fields_begin.inc"

/// A pin that the user has put on the map.
class DroppedPin final : public FieldedMessage<DroppedPin> {
 public:
  static constexpr std::uint32_t kLastFieldNumber = 4;

  /// Degrees.
  SCALAR_FIELD(1, double, latitude, Latitude)
  SCALAR_FIELD(2, double, longitude, Longitude)
  /// Ground floor 0, basements negative.
  SCALAR_FIELD(3, std::int32_t, floorOrdinal, FloorOrdinal)
  /// When the pin was dropped, in seconds since 1970.
  SCALAR_FIELD(4, double, timestamp, Timestamp)
};

#include "wire/message_fields_end.inc"

}  // namespace linewatch
