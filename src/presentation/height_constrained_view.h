#pragma once

#include "ui/layout/layout_constraint.h"
#include "ui/view.h"

namespace linewatch {

/// A view that can be given a height of 0.
class HeightConstrainedView : public ui::View {
 public:
  using View::View;

  /// Height = 0. Always the same object; inactive until the caller activates it.
  const ui::SharedConstraint& heightConstraint() {
    if (!heightConstraint_) heightConstraint_ = heightAnchor().constraintEqualToConstant(0);
    return heightConstraint_;
  }

 private:
  ui::SharedConstraint heightConstraint_;
};

}  // namespace linewatch
