#pragma once

#include "list/transit_list_item.h"
#include "platform/artwork.h"
#include "shared/value.h"

namespace linewatch {

/// The list in plain values, for those who print or record it:
///
///     LIST         {"summaryItem": ITEM or none, "expandedItems": [ITEM…]}
///     ITEM         {"kind": "item", "primaryText", "secondaryText", "displayArtwork", "artwork",
///                  "openable"}
///               or {"kind": "summary", "primaryText", "artworks": [DESCRIPTION…], "openable"}
///     artwork      {"alpha", "image": NAME}, {"alpha", "shield": DESCRIPTION, "size"} or none
///     openable     {"url"}, {"activityType", "userInfo"} or none
///
/// A text that is absent is none.
Dictionary dictionaryForm(const RVTransitListItem& list);
Dictionary dictionaryForm(const RVTransitItem& item);
Dictionary dictionaryForm(const RVTransitSummaryItem& item);
/// None when there is no row.
Value dictionaryForm(const SummaryItem& item);

/// DESCRIPTION: what differs from an empty description. The shield's and the icon's own fields stand beside
/// the artwork's; those of the shield to fall back on in "iconFallbackShieldDataSource". A shield or an icon
/// that differs from an empty one in nothing still has its "shieldType" or "iconType".
Dictionary dictionaryForm(const TransitArtworkDataSource& artwork);

}  // namespace linewatch
