#pragma once

#include <cstdint>

#include "shared/object.h"
#include "ui/layout_anchor.h"

namespace linewatch::ui {

class View;

/// A rectangle that constraints can place: a view or a layout guide. Main thread.
class LayoutItem : public Object {
 public:
  ~LayoutItem() override { *life_ = nullptr; }

  LayoutItem(const LayoutItem&) = delete;
  LayoutItem& operator=(const LayoutItem&) = delete;

  XAnchor leadingAnchor() const { return XAnchor(term(LayoutAttribute::leading)); }
  XAnchor trailingAnchor() const { return XAnchor(term(LayoutAttribute::trailing)); }
  XAnchor centerXAnchor() const { return XAnchor(term(LayoutAttribute::centerX)); }
  YAnchor topAnchor() const { return YAnchor(term(LayoutAttribute::top)); }
  YAnchor bottomAnchor() const { return YAnchor(term(LayoutAttribute::bottom)); }
  YAnchor centerYAnchor() const { return YAnchor(term(LayoutAttribute::centerY)); }
  DimensionAnchor widthAnchor() const { return DimensionAnchor(term(LayoutAttribute::width)); }
  DimensionAnchor heightAnchor() const { return DimensionAnchor(term(LayoutAttribute::height)); }

  /// The view itself, or the guide's view; null for a guide that belongs to none.
  virtual View* owningView() = 0;
  virtual const View* owningView() const = 0;

 protected:
  LayoutItem() = default;

  LayoutTerm term(LayoutAttribute attribute) const { return {life_, attribute}; }

 private:
  friend class LayoutEngine;
  friend class View;

  std::shared_ptr<LayoutItem*> life_ = std::make_shared<LayoutItem*>(this);
  /// The item's place in its layout root's engine.
  std::uint32_t engineSlot_ = UINT32_MAX;
};

}  // namespace linewatch::ui
