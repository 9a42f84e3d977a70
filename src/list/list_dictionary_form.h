#pragma once

#include <functional>

#include "list/transit_list_item.h"
#include "platform/artwork.h"
#include "shared/value.h"

namespace linewatch {

/// The value to print in place of the bytes in a user info. An empty function keeps the bytes.
using BytesForm = std::function<Value(const Bytes&)>;

/// The list as plain values, to print or record it:
///
///     LIST         {"summaryItem": ITEM or none, "expandedItems": [ITEM…] or none}
///     ITEM         {"kind": "item", "primaryText", "secondaryText", "displayArtwork", "artwork",
///                  "openable"}
///               or {"kind": "summary", "primaryText", "artworks": [DESCRIPTION…], "openable"}
///     artwork      {"alpha", "image": NAME}, {"alpha", "shield": DESCRIPTION, "size"} or none
///     openable     {"url"}, {"activityType", "userInfo"} or none
///
/// An absent text is none.
Dictionary dictionaryForm(const RVTransitListItem& list, const BytesForm& formOfBytes = {});
Dictionary dictionaryForm(const RVTransitItem& item, const BytesForm& formOfBytes = {});
Dictionary dictionaryForm(const RVTransitSummaryItem& item, const BytesForm& formOfBytes = {});
/// None when there is no row.
Value dictionaryForm(const SummaryItem& item, const BytesForm& formOfBytes = {});

/// DESCRIPTION: the fields that differ from an empty description. The fields of the shield and of the icon
/// stand beside the artwork's own; those of the fallback shield are in "iconFallbackShieldDataSource". A
/// shield or an icon with default values only still has its "shieldType" or "iconType".
Dictionary dictionaryForm(const TransitArtworkDataSource& artwork);

}  // namespace linewatch
