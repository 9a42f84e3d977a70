#pragma once

#include <functional>
#include <utility>

#include "platform/extension_context.h"

namespace linewatch::desktop {

/// The widget's host: tells the widget how large it may be and which display mode it has, and opens its URLs.
/// Main thread.
class PanelHost final : public ExtensionContext {
 public:
  using OpenURL = std::function<void(const URL& url, std::function<void(bool success)> completion)>;

  /// The largest size of the widget, in points.
  struct Limits {
    double width = 0;
    /// The height of the compact widget. Each row of the expanded widget has the same height.
    double compactHeight = 0;
    double expandedHeight = 0;
  };

  PanelHost(const Limits& limits, OpenURL openURL) : limits_(limits), openURL_(std::move(openURL)) {}

  const Limits& limits() const { return limits_; }
  void setLimits(const Limits& limits) { limits_ = limits; }
  void setActiveDisplayMode(WidgetDisplayMode mode) { active_ = mode; }
  WidgetDisplayMode largestAvailableDisplayMode() const { return largest_; }
  /// `handler` is called each time the widget sets its largest available display mode.
  void setAvailabilityHandler(std::function<void()> handler) { availabilityHandler_ = std::move(handler); }

  Size maximumSizeForDisplayMode(WidgetDisplayMode mode) const override {
    return {limits_.width,
            mode == WidgetDisplayMode::expanded ? limits_.expandedHeight : limits_.compactHeight};
  }
  WidgetDisplayMode activeDisplayMode() const override { return active_; }
  void setLargestAvailableDisplayMode(WidgetDisplayMode mode) override {
    largest_ = mode;
    if (availabilityHandler_) availabilityHandler_();
  }
  void openURL(const URL& url, std::function<void(bool success)> completion) override {
    openURL_(url, std::move(completion));
  }

 private:
  Limits limits_;
  OpenURL openURL_;
  WidgetDisplayMode active_ = WidgetDisplayMode::compact;
  WidgetDisplayMode largest_ = WidgetDisplayMode::compact;
  std::function<void()> availabilityHandler_;
};

}  // namespace linewatch::desktop
