#include "widget/widget_display_mode.h"

namespace linewatch {

WidgetDisplayMode widgetLargestAvailableDisplayMode(const RVTransitListItem* list) {
  return list != nullptr && list->hasExpandedItems() ? WidgetDisplayMode::expanded
                                                     : WidgetDisplayMode::compact;
}

}  // namespace linewatch
