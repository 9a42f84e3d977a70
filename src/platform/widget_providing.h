#pragma once

#include <functional>

#include "platform/extension_context.h"

namespace linewatch {

/// What the host of a widget asks of the widget's controller. Main thread.
class WidgetProviding {
 public:
  virtual ~WidgetProviding() = default;

  /// Brings the widget up to date. The handler, which may be empty, is called once, later than this call
  /// returns, even when the widget is gone by then.
  virtual void widgetPerformUpdateWithCompletionHandler(
      std::function<void(WidgetUpdateResult result)> completionHandler) = 0;
  /// The host shows the widget in another mode, in which it can be as large as `withMaximumSize`.
  virtual void widgetActiveDisplayModeDidChange(WidgetDisplayMode activeDisplayMode,
                                                const Size& withMaximumSize) = 0;
};

}  // namespace linewatch
