#pragma once

#include <cstdint>

#include "wire/codable_message.h"
#include "wire/message_field.h"

namespace linewatch {

#include "wire/message_fields_begin.inc"

/// The kinds of transit that a directions plan avoids.
class DirectionsPlanTransitPreferences : public FieldedMessage<DirectionsPlanTransitPreferences> {
 public:
  static constexpr std::uint32_t kLastFieldNumber = 4;

  bool readFrom(MessageReader& reader) override;

  SCALAR_FIELD(1, bool, avoidBusRoutes, AvoidBusRoutes)
  SCALAR_FIELD(2, bool, avoidMetroLightRailRoutes, AvoidMetroLightRailRoutes)
  SCALAR_FIELD(3, bool, avoidRailRoutes, AvoidRailRoutes)
  SCALAR_FIELD(4, bool, avoidFerryRoutes, AvoidFerryRoutes)
};

#include "wire/message_fields_end.inc"

/// Reads the fields of `preferences` until the data ends; false when the data is malformed.
bool DirectionsPlanTransitPreferencesReadFrom(DirectionsPlanTransitPreferences& preferences,
                                              MessageReader& reader);

}  // namespace linewatch
