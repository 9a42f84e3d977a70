#pragma once

#include <functional>

#include "platform/extension_context.h"

namespace linewatch {

/// The requests of a widget's host to the widget's controller. Main thread.
class WidgetProviding {
 public:
  virtual ~WidgetProviding() = default;

  /// Updates the widget. The handler may be empty; otherwise it is called exactly once, even if the widget
  /// has been destroyed. It is usually called after this call has returned. It is called during this call
  /// when the request joins a fetch that already has its result, e.g. when a host asks again inside another
  /// handler.
  virtual void widgetPerformUpdateWithCompletionHandler(
      std::function<void(WidgetUpdateResult result)> completionHandler) = 0;
  /// The host shows the widget in another mode, with at most the size `withMaximumSize`.
  virtual void widgetActiveDisplayModeDidChange(WidgetDisplayMode activeDisplayMode,
                                                const Size& withMaximumSize) = 0;
};

}  // namespace linewatch
