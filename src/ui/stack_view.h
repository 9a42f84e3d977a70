#pragma once

#include <memory>
#include <vector>

#include "ui/view.h"

namespace linewatch::ui {

/// Puts views below each other: the spacing runs from a view's last baseline to the next one's first. The
/// views are as wide as the stack, and together as high. A hidden view, or one that was moved elsewhere,
/// takes no space.
class StackView : public View {
 public:
  /// Adds the view at the bottom. It is a subview that is laid out by constraints.
  void addArrangedSubview(const std::shared_ptr<View>& view);

  /// Points.
  double spacing() const { return spacing_; }
  void setSpacing(double spacing);

  /// The first and the last arranged view that is not hidden.
  View& viewForFirstBaselineLayout() override;
  View& viewForLastBaselineLayout() override;

 protected:
  void shownSubviewsDidChange(View& subview) override;

 private:
  /// The constraint between two neighbours; an absent view stands for the stack's own edge.
  struct Link {
    const View* above = nullptr;
    const View* below = nullptr;
    SharedConstraint constraint;
  };

  std::vector<View*> shownViews() const;
  void rearrange();
  SharedConstraint linkBetween(View* above, View* below);
  SharedConstraint makeLink(View* above, View* below) const;

  double spacing_ = 0;
  std::vector<std::shared_ptr<View>> arranged_;
  std::vector<Link> links_;
};

}  // namespace linewatch::ui
