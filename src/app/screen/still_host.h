#pragma once

#include <algorithm>
#include <cstdint>

#include "platform/extension_context.h"

namespace linewatch::app {

/// A host that shows the widget once: every row as high as the compact widget, and as many rows as there is
/// room for. It opens nothing.
class StillHost final : public ExtensionContext {
 public:
  /// `compact` is the size of the compact widget, in points; `maxHeight` what the rows may not exceed;
  /// `maxRows` 0 for as many as fit.
  StillHost(const Size& compact, double maxHeight, WidgetDisplayMode mode, std::uint64_t maxRows)
      : compact_(compact), mode_(mode) {
    const auto fitting = std::max<std::uint64_t>(1, static_cast<std::uint64_t>(maxHeight / compact.height));
    maxRows_ = maxRows == 0 ? fitting : std::min(maxRows, fitting);
  }

  Size maximumSizeForDisplayMode(WidgetDisplayMode mode) const override {
    if (mode == WidgetDisplayMode::compact) return compact_;
    return {compact_.width, compact_.height * static_cast<double>(maxRows_)};
  }
  WidgetDisplayMode activeDisplayMode() const override { return mode_; }
  void setLargestAvailableDisplayMode(WidgetDisplayMode) override {}
  void openURL(const URL&, std::function<void(bool success)> completion) override {
    if (completion) completion(false);
  }

 private:
  Size compact_;
  WidgetDisplayMode mode_;
  std::uint64_t maxRows_;
};

}  // namespace linewatch::app
