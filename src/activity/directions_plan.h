#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "activity/directions_plan_transit_preferences.h"
#include "platform/route_request_storage.h"
#include "wire/codable_message.h"
#include "wire/message_enumeration.h"
#include "wire/message_field.h"

namespace linewatch {

/// The user's progress with the directions.
enum class DisplayMethod : std::int32_t { directionsSearch = 0, routePicking, directionsStarted };

template <>
inline constexpr std::array<std::string_view, 3> kEnumerationNames<DisplayMethod> = {
    "DirectionsSearch", "RoutePicking", "DirectionsStarted"};

/// The criterion by which transit routes are ranked.
enum class TransitPrioritization : std::int32_t {
  byDefault = 0,
  byTravelTime,
  byTransferCount,
  byWalkingDistance
};

template <>
inline constexpr std::array<std::string_view, 4> kEnumerationNames<TransitPrioritization> = {
    "TRANSIT_PRIORITIZE_DEFAULT", "TRANSIT_PRIORITIZE_BY_TRAVEL_TIME", "TRANSIT_PRIORITIZE_BY_TRANSFER_COUNT",
    "TRANSIT_PRIORITIZE_BY_WALKING_DISTANCE"};

/// The names of the values; "(unknown: 7)" for a value without one, the value 0 for any other text.
std::string displayMethodAsString(DisplayMethod value);
DisplayMethod StringAsDisplayMethod(std::string_view name);
std::string transitPrioritizationAsString(TransitPrioritization value);
TransitPrioritization StringAsTransitPrioritization(std::string_view name);

#include "wire/message_fields_begin.inc"

/// Directions from one place to another and the user's progress with them. Only the companion application
/// sets and reads the times.
class DirectionsPlan : public FieldedMessage<DirectionsPlan> {
 public:
  static constexpr std::uint32_t kLastFieldNumber = 404;

  bool readFrom(MessageReader& reader) override;

  MESSAGE_FIELD(1, RouteRequestStorage, routeRequestStorage, RouteRequestStorage)
  STRING_FIELD(2, originString, OriginString)
  STRING_FIELD(3, destinationString, DestinationString)
  SCALAR_FIELD(4, double, departureTime, DepartureTime)
  SCALAR_FIELD(5, double, arrivalTime, ArrivalTime)
  SCALAR_FIELD(6, std::uint64_t, currentRouteIndex, CurrentRouteIndex)
  SCALAR_FIELD(7, std::uint64_t, currentRouteStep, CurrentRouteStep)
  ENUMERATION_FIELD(8, DisplayMethod, displayMethod, DisplayMethod)
  MESSAGE_FIELD(9, DirectionsPlanTransitPreferences, transitPreferences, TransitPreferences)
  SCALAR_FIELD(10, std::uint32_t, routesPerInitialPage, RoutesPerInitialPage)
  SCALAR_FIELD(11, std::uint32_t, earlierPagesLoaded, EarlierPagesLoaded)
  SCALAR_FIELD(12, std::uint32_t, laterPagesLoaded, LaterPagesLoaded)
  SCALAR_FIELD(13, std::uint32_t, routesPerEarlierPage, RoutesPerEarlierPage)
  SCALAR_FIELD(14, std::uint32_t, routesPerLaterPage, RoutesPerLaterPage)
  ENUMERATION_FIELD(15, TransitPrioritization, transitPrioritization, TransitPrioritization)
  SCALAR_FIELD(16, std::int32_t, transitSurchargeOption, TransitSurchargeOption)
  SCALAR_FIELD(17, double, expiryTime, ExpiryTime)
  SCALAR_FIELD(404, bool, isPlayingTrace, IsPlayingTrace)
};

#include "wire/message_fields_end.inc"

/// Reads the fields of `plan` until the data ends; false when the data is malformed.
bool DirectionsPlanReadFrom(DirectionsPlan& plan, MessageReader& reader);

}  // namespace linewatch
