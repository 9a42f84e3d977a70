#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <vector>

#include "ui/layout_item.h"

namespace linewatch::ui {

/// first = multiplier × second + constant, or ≤ or ≥ of it; without a second item: first = constant.
///
/// Widths may be related to heights; they come first, so that the height follows the width.
///
/// Both items must be in one view tree when the constraint is activated. Their nearest common view then keeps
/// it; it becomes inactive when an item leaves that view. Required constraints that contradict each other:
/// the one made later gives way and is logged, once. A constraint whose constant is not a finite number is
/// left out of the layout until it gets one. Main thread.
class LayoutConstraint final : public Object, public std::enable_shared_from_this<LayoutConstraint> {
 public:
  /// What the anchors call.
  static std::shared_ptr<LayoutConstraint> make(LayoutTerm first, Relation relation, LayoutTerm second,
                                                double multiplier, double constant);

  /// Null when the item has gone away; the second also where there is none.
  LayoutItem* firstItem() const { return *first_.item; }
  LayoutItem* secondItem() const { return second_.item ? *second_.item : nullptr; }
  LayoutAttribute firstAttribute() const { return first_.attribute; }
  Relation relation() const { return relation_; }
  double multiplier() const { return multiplier_; }

  double constant() const { return constant_; }
  void setConstant(double constant);

  LayoutPriority priority() const { return priority_; }
  void setPriority(LayoutPriority priority);

  bool isActive() const { return holder_ != nullptr; }
  void setActive(bool active);
  static void activate(std::initializer_list<std::shared_ptr<LayoutConstraint>> constraints);
  static void activate(const std::vector<std::shared_ptr<LayoutConstraint>>& constraints);
  static void deactivate(const std::vector<std::shared_ptr<LayoutConstraint>>& constraints);

  std::string description() const override;

 private:
  friend class View;
  friend class LayoutEngine;

  LayoutConstraint() = default;

  void activate();
  void deactivate();
  bool hasSecondItem() const { return second_.item != nullptr; }

  LayoutTerm first_;
  LayoutTerm second_;
  Relation relation_ = Relation::equal;
  double multiplier_ = 1;
  double constant_ = 0;
  LayoutPriority priority_ = kRequiredPriority;
  /// Counts constraints as they are made.
  std::uint64_t order_ = 0;
  /// The view that keeps the constraint while it is active.
  View* holder_ = nullptr;
  /// The constraint's place in its layout root's engine.
  std::uint32_t engineSlot_ = UINT32_MAX;
  mutable bool faultLogged_ = false;
};

using SharedConstraint = std::shared_ptr<LayoutConstraint>;

}  // namespace linewatch::ui
