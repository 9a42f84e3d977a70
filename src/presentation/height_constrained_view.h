#pragma once

#include "ui/layout/layout_constraint.h"
#include "ui/view.h"

namespace linewatch {

/// A view that can be made to take no height.
class HeightConstrainedView : public ui::View {
 public:
  using View::View;

  /// Height = 0. Made when it is first asked for, always the same, and not active until someone activates it.
  const ui::SharedConstraint& heightConstraint() {
    if (!heightConstraint_) heightConstraint_ = heightAnchor().constraintEqualToConstant(0);
    return heightConstraint_;
  }

 private:
  ui::SharedConstraint heightConstraint_;
};

}  // namespace linewatch
