#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "wire/codable_message.h"
#include "wire/message_field.h"

namespace linewatch {

#include "wire/message_fields_begin.inc"

/// A stored place on the map.
class MapItemStorage final : public FieldedMessage<MapItemStorage> {
 public:
  static constexpr std::uint32_t kLastFieldNumber = 5;

  /// The identifier by which the map service knows the place.
  SCALAR_FIELD(1, std::uint64_t, muid, Muid)
  STRING_FIELD(2, name, Name)
  /// Degrees.
  SCALAR_FIELD(3, double, latitude, Latitude)
  SCALAR_FIELD(4, double, longitude, Longitude)
  /// On one line.
  STRING_FIELD(5, address, Address)
};

#include "wire/message_fields_end.inc"

}  // namespace linewatch
