#pragma once

#include "ui/geometry.h"
#include "ui/layout_item.h"

namespace linewatch::ui {

/// An invisible rectangle for constraints.
class LayoutGuide final : public LayoutItem {
 public:
  View* owningView() override { return owningView_; }
  const View* owningView() const override { return owningView_; }
  /// In the owning view's coordinates, after layout.
  const Rect& layoutFrame() const { return layoutFrame_; }

 private:
  friend class View;
  friend class LayoutEngine;

  View* owningView_ = nullptr;
  Rect layoutFrame_;
};

}  // namespace linewatch::ui
