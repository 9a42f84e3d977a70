#pragma once

#include <functional>

#include "platform/extension_context.h"

namespace linewatch {

/// The requests of a widget's host to the widget's controller. Main thread.
class WidgetProviding {
 public:
  virtual ~WidgetProviding() = default;

  /// Brings the widget up to date. The handler, which may be empty, is called exactly once, even when the
  /// widget is gone by then. Usually that is after this call has returned. It is during this call when the
  /// request joins a fetch that has its result already, e.g. when a host asks again inside another handler.
  virtual void widgetPerformUpdateWithCompletionHandler(
      std::function<void(WidgetUpdateResult result)> completionHandler) = 0;
  /// The host shows the widget in another mode, with at most the size `withMaximumSize`.
  virtual void widgetActiveDisplayModeDidChange(WidgetDisplayMode activeDisplayMode,
                                                const Size& withMaximumSize) = 0;
};

}  // namespace linewatch
