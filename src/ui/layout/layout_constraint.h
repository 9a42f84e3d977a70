#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "ui/layout/associated_values.h"
#include "ui/layout/layout_item.h"

namespace linewatch::ui {

/// first = second + constant, or ≤ or ≥ of it; without a second item: first = constant.
///
/// Both items must be in one tree when the constraint is activated. Their nearest common box then keeps it;
/// it becomes inactive when an item leaves that box. When constraints contradict each other, the one made
/// last is left out of the layout, and the log says so once. A constraint whose constant is not finite is
/// left out until it gets a finite one. Main thread.
class LayoutConstraint final : public Object, public std::enable_shared_from_this<LayoutConstraint> {
 public:
  /// For the anchors. Without a second item `first` is related to the constant alone.
  static std::shared_ptr<LayoutConstraint> make(LayoutTerm first, Relation relation, LayoutTerm second,
                                                double constant);

  /// Null when the item has been destroyed. The second is also null when the constraint has none.
  LayoutItem* firstItem() const { return *first_.item; }
  LayoutItem* secondItem() const { return second_.item ? *second_.item : nullptr; }

  double constant() const { return constant_; }
  void setConstant(double constant);

  bool isActive() const { return holder_ != nullptr; }
  void setActive(bool active);
  static void activate(std::initializer_list<std::shared_ptr<LayoutConstraint>> constraints);
  static void activate(const std::vector<std::shared_ptr<LayoutConstraint>>& constraints);

  /// Values that live as long as the constraint.
  AssociatedValues& associatedValues() { return associatedValues_; }

  /// For logs, e.g. "Label.leading == View.leading + 10".
  std::string description() const override;

 private:
  friend class LayoutBox;
  friend class LayoutEngine;

  LayoutConstraint() = default;

  void activate();
  void deactivate();
  bool hasSecondItem() const { return second_.item != nullptr; }

  AssociatedValues associatedValues_;
  LayoutTerm first_;
  LayoutTerm second_;
  Relation relation_ = Relation::equal;
  double constant_ = 0;
  /// Constraints are numbered as they are made.
  std::uint64_t order_ = 0;
  /// The box that keeps the constraint while it is active.
  LayoutBox* holder_ = nullptr;
  /// The constraint's slot in its layout root's engine.
  std::uint32_t engineSlot_ = UINT32_MAX;
  mutable bool faultLogged_ = false;
};

using SharedConstraint = std::shared_ptr<LayoutConstraint>;

}  // namespace linewatch::ui
