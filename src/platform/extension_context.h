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

/// How much of a widget its host shows: one row, or several.
enum class WidgetDisplayMode : std::int64_t { compact = 0, expanded = 1 };

/// What came of an update that the host asked for.
enum class WidgetUpdateResult : std::int64_t { newData = 0, noData = 1, failed = 2 };

/// The widget's way to the host that shows it. Main thread.
class ExtensionContext {
 public:
  virtual ~ExtensionContext() = default;

  /// The largest size that the widget can have in the mode.
  virtual Size maximumSizeForDisplayMode(WidgetDisplayMode mode) const = 0;
  virtual WidgetDisplayMode activeDisplayMode() const = 0;
  virtual void setLargestAvailableDisplayMode(WidgetDisplayMode mode) = 0;
  /// Opens the URL; `completion` is called once with the outcome, possibly later.
  virtual void openURL(const URL& url, std::function<void(bool success)> completion) = 0;
};

}  // namespace linewatch
