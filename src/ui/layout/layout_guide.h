#pragma once

#include "ui/layout/geometry.h"
#include "ui/layout/layout_item.h"

namespace linewatch::ui {

/// An invisible rectangle for constraints.
class LayoutGuide final : public LayoutItem {
 public:
  LayoutBox* owningBox() override { return owningBox_; }
  const LayoutBox* owningBox() const override { return owningBox_; }
  /// In the owning box's coordinates, after layout.
  const Rect& layoutFrame() const { return layoutFrame_; }

 private:
  friend class LayoutBox;
  friend class LayoutEngine;

  LayoutBox* owningBox_ = nullptr;
  Rect layoutFrame_;
};

}  // namespace linewatch::ui
