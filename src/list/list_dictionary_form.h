#pragma once

#include <functional>

#include "list/transit_list_item.h"
#include "platform/artwork.h"
#include "shared/value.h"

namespace linewatch {

/// Returns the value to print in place of bytes in a user info, e.g. their length. When it is empty, the
/// bytes are printed.
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
/// A text that is absent is printed as none.
Dictionary dictionaryForm(const RVTransitListItem& list, const BytesForm& formOfBytes = {});
Dictionary dictionaryForm(const RVTransitItem& item, const BytesForm& formOfBytes = {});
Dictionary dictionaryForm(const RVTransitSummaryItem& item, const BytesForm& formOfBytes = {});
/// Prints none when there is no row.
Value dictionaryForm(const SummaryItem& item, const BytesForm& formOfBytes = {});

/// DESCRIPTION: the fields of the artwork that are set. The fields of its shield and its icon are in the same
/// dictionary; the fields of the fallback shield are in a nested one, "iconFallbackShieldDataSource". A
/// shield has at least its "shieldType" and an icon its "iconType", even when all its values are defaults.
Dictionary dictionaryForm(const TransitArtworkDataSource& artwork);

}  // namespace linewatch
