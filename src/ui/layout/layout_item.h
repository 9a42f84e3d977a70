#pragma once

#include <cstdint>
#include <memory>

#include "shared/object.h"
#include "ui/layout/associated_values.h"
#include "ui/layout/layout_anchor.h"

namespace linewatch::ui {

class LayoutBox;

/// A rectangle that constraints can place: a layout box or a guide. Main thread.
class LayoutItem : public Object {
 public:
  ~LayoutItem() override { *life_ = nullptr; }

  LayoutItem(const LayoutItem&) = delete;
  LayoutItem& operator=(const LayoutItem&) = delete;

  XAnchor leadingAnchor() const { return XAnchor(term(LayoutAttribute::leading)); }
  XAnchor trailingAnchor() const { return XAnchor(term(LayoutAttribute::trailing)); }
  YAnchor topAnchor() const { return YAnchor(term(LayoutAttribute::top)); }
  YAnchor bottomAnchor() const { return YAnchor(term(LayoutAttribute::bottom)); }
  YAnchor centerYAnchor() const { return YAnchor(term(LayoutAttribute::centerY)); }
  DimensionAnchor widthAnchor() const { return DimensionAnchor(term(LayoutAttribute::width)); }
  DimensionAnchor heightAnchor() const { return DimensionAnchor(term(LayoutAttribute::height)); }

  /// Values that live as long as the item.
  AssociatedValues& associatedValues() { return associatedValues_; }

  /// The box itself, or the guide's box; null for a guide that belongs to none.
  virtual LayoutBox* owningBox() = 0;
  virtual const LayoutBox* owningBox() const = 0;

 protected:
  LayoutItem() = default;

  LayoutTerm term(LayoutAttribute attribute) const { return {life_, attribute}; }
  /// True while an engine lays the item out.
  bool isInEngine() const { return engineSlot_ != kNoEngineSlot; }

 private:
  friend class LayoutEngine;

  static constexpr std::uint32_t kNoEngineSlot = UINT32_MAX;

  AssociatedValues associatedValues_;
  std::shared_ptr<LayoutItem*> life_ = std::make_shared<LayoutItem*>(this);
  /// The item's index in its layout root's engine.
  std::uint32_t engineSlot_ = kNoEngineSlot;
};

}  // namespace linewatch::ui
