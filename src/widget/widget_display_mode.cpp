#include "widget/widget_display_mode.h"

namespace linewatch {

WidgetDisplayMode widgetLargestAvailableDisplayMode(const RVTransitListItem* list) {
  return list != nullptr && !list->expandedItems().empty() ? WidgetDisplayMode::expanded
                                                           : WidgetDisplayMode::compact;
}

}  // namespace linewatch
