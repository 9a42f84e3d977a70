#pragma once

#include <cstdint>

#include "platform/extension_context.h"

namespace linewatch::app {

/// A host that shows the widget once: as wide as it is told, every row of the same height, and as many rows
/// as are allowed. It opens nothing.
class StillHost final : public ExtensionContext {
 public:
  /// Points, of the compact widget and so of each row.
  static constexpr double kRowHeight = 110;
  /// What no limit comes to: more rows than anyone looks at, in a picture that can still be drawn.
  static constexpr std::uint64_t kMostRows = 1000;

  StillHost(double width, WidgetDisplayMode mode, std::uint64_t maxRows)
      : width_(width), mode_(mode), maxRows_(maxRows == 0 || maxRows > kMostRows ? kMostRows : maxRows) {}

  Size maximumSizeForDisplayMode(WidgetDisplayMode mode) const override {
    return {width_,
            mode == WidgetDisplayMode::compact ? kRowHeight : kRowHeight * static_cast<double>(maxRows_)};
  }
  WidgetDisplayMode activeDisplayMode() const override { return mode_; }
  void setLargestAvailableDisplayMode(WidgetDisplayMode) override {}
  void openURL(const URL&, std::function<void(bool success)> completion) override {
    if (completion) completion(false);
  }

 private:
  double width_;
  WidgetDisplayMode mode_;
  std::uint64_t maxRows_;
};

}  // namespace linewatch::app
