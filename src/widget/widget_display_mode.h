#pragma once

#include "list/transit_list_item.h"
#include "platform/extension_context.h"

namespace linewatch {

/// The largest mode in which the list has something to show: expanded when it has rows for that. A null list
/// has none.
WidgetDisplayMode widgetLargestAvailableDisplayMode(const RVTransitListItem* list);

}  // namespace linewatch
