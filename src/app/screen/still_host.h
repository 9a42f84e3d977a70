#pragma once

#include <algorithm>
#include <cstdint>

#include "platform/extension_context.h"

namespace linewatch::app {

/// The widget's host for a picture. Every row has the height of the compact widget; the number of rows is as
/// large as the picture allows. It opens no URLs.
class StillHost final : public ExtensionContext {
 public:
  /// `compact`: the size of the compact widget, in points. `maxHeight`: the largest height of all rows, in
  /// points. `maxRows`: the largest number of rows; 0: only `maxHeight` limits it.
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
