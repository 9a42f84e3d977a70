#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

#include "activity/directions_plan.h"
#include "platform/dropped_pin.h"
#include "platform/map_item_storage.h"
#include "platform/search_category_storage.h"
#include "platform/transit_storage_line_item.h"
#include "platform/url_display_options.h"
#include "wire/codable_message.h"
#include "wire/message_enumeration.h"
#include "wire/message_field.h"

namespace linewatch {

/// The collection of places that is open.
enum class CollectionsMode : std::int32_t { none = 0, bookmarks, recents, contacts };

template <>
inline constexpr std::array<std::string_view, 4> kEnumerationNames<CollectionsMode> = {"None", "Bookmarks",
                                                                                       "Recents", "Contacts"};

/// The names of the values; "(unknown: 7)" for a value without one, `none` for any other text.
std::string collectionsModeAsString(CollectionsMode value);
CollectionsMode StringAsCollectionsMode(std::string_view name);

#include "wire/message_fields_begin.inc"

/// Tells the companion application what to show when the user taps a line's row. The widget sets the line and
/// the display options; only the companion application uses the other fields.
class RovaActivity : public FieldedMessage<RovaActivity> {
 public:
  static constexpr std::uint32_t kLastFieldNumber = 15;

  MESSAGE_FIELD(1, UrlDisplayOptions, displayOptions, DisplayOptions)
  ENUMERATION_FIELD(2, CollectionsMode, collectionsMode, CollectionsMode)
  STRING_FIELD(3, searchString, SearchString)
  REPEATED_MESSAGE_FIELD(4, MapItemStorage, searchPlaces, SearchPlaces)
  SCALAR_FIELD(5, std::uint64_t, selectedPlaceIndex, SelectedPlaceIndex)
  SCALAR_FIELD(6, bool, isPresentingSelectedPlace, IsPresentingSelectedPlace)
  MESSAGE_FIELD(7, DirectionsPlan, directionsPlan, DirectionsPlan)
  MESSAGE_FIELD(8, DroppedPin, droppedPin, DroppedPin)
  SCALAR_FIELD(9, bool, isDroppedPinSelected, IsDroppedPinSelected)
  SCALAR_FIELD(10, bool, isDroppedPinPresented, IsDroppedPinPresented)
  MESSAGE_FIELD(11, MapItemStorage, presentedMapItem, PresentedMapItem)
  MESSAGE_FIELD(12, SearchCategoryStorage, searchCategoryStorage, SearchCategoryStorage)
  SCALAR_FIELD(13, std::uint64_t, selectedTransitFeatureID, SelectedTransitFeatureID)
  STRING_FIELD(14, selectedTransitLineName, SelectedTransitLineName)
  MESSAGE_FIELD(15, TransitStorageLineItem, lineItem, LineItem)
};

#include "wire/message_fields_end.inc"

}  // namespace linewatch
