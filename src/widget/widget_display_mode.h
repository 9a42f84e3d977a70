#pragma once

#include "list/transit_list_item.h"
#include "platform/extension_context.h"

namespace linewatch {

/// The largest mode that the list supports: expanded when it has expanded rows. A null list supports compact
/// only.
WidgetDisplayMode widgetLargestAvailableDisplayMode(const RVTransitListItem* list);

}  // namespace linewatch
