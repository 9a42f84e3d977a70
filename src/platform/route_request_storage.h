#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <typeinfo>
#include <utility>
#include <vector>

#include "platform/map_item_storage.h"
#include "wire/codable_message.h"
#include "wire/message_field.h"

namespace linewatch {

#include "wire/message_fields_begin.inc"

/// A stored request for routes.
class RouteRequestStorage final : public FieldedMessage<RouteRequestStorage> {
 public:
  static constexpr std::uint32_t kLastFieldNumber = 2;

  /// From the origin to the destination.
  REPEATED_MESSAGE_FIELD(1, MapItemStorage, waypoints, Waypoints)
  SCALAR_FIELD(2, std::int32_t, transportType, TransportType)
};

#include "wire/message_fields_end.inc"

}  // namespace linewatch
