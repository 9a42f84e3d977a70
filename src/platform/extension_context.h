#pragma once

#include <cstdint>
#include <functional>

#include "platform/url.h"

namespace linewatch {

/// A width and a height in points.
struct Size {
  double width = 0;
  double height = 0;

  bool operator==(const Size&) const = default;
};

/// Whether the host shows one row of the widget or several.
enum class WidgetDisplayMode : std::int64_t { compact = 0, expanded = 1 };

/// The outcome of an update that the host asked for.
enum class WidgetUpdateResult : std::int64_t { newData = 0, noData = 1, failed = 2 };

/// The host that shows the widget, as the widget sees it. Main thread.
class ExtensionContext {
 public:
  virtual ~ExtensionContext() = default;

  /// The largest size that the widget can have in the mode, in points.
  virtual Size maximumSizeForDisplayMode(WidgetDisplayMode mode) const = 0;
  /// The mode in which the widget is shown now.
  virtual WidgetDisplayMode activeDisplayMode() const = 0;
  /// Tells the host the largest mode that the widget supports. The host offers no larger one.
  virtual void setLargestAvailableDisplayMode(WidgetDisplayMode mode) = 0;
  /// Opens the URL. `completion` may be empty; otherwise it is called exactly once, on the main thread,
  /// within this call or later: with false when nothing opened the URL.
  virtual void openURL(const URL& url, std::function<void(bool success)> completion) = 0;
};

}  // namespace linewatch
