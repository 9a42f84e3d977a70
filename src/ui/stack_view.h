#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "ui/view.h"

namespace linewatch::ui {

enum class StackAlignment : std::uint8_t { fill, leading, center, trailing };

/// Puts views one after the other with a spacing, by constraints of its own; they fill the stack along its
/// axis. An arranged view takes no place while it is hidden or elsewhere. Alignment is across the axis;
/// leading is the top in a horizontal stack.
class StackView : public View {
 public:
  explicit StackView(Axis axis) : axis_(axis) {}

  Axis axis() const { return axis_; }
  const std::vector<std::shared_ptr<View>>& arrangedSubviews() const { return arranged_; }
  /// The view becomes a subview that is laid out by constraints.
  void addArrangedSubview(const std::shared_ptr<View>& view);
  void insertArrangedSubview(const std::shared_ptr<View>& view, std::size_t index);

  double spacing() const { return spacing_; }
  void setSpacing(double spacing);
  StackAlignment alignment() const { return alignment_; }
  void setAlignment(StackAlignment alignment);
  /// In a vertical stack: the spacing runs from a view's last baseline to the next one's first.
  void setBaselineRelativeArrangement(bool relative);

  /// The first and the last arranged view that is not hidden.
  View& viewForFirstBaselineLayout() override;
  View& viewForLastBaselineLayout() override;

 protected:
  void shownSubviewsDidChange(View& subview) override;

 private:
  /// A constraint along the axis; an absent view stands for the stack's own edge.
  struct Link {
    const View* before = nullptr;
    const View* after = nullptr;
    SharedConstraint constraint;
  };

  std::vector<View*> shownViews() const;
  void rearrange();
  SharedConstraint linkBetween(View* before, View* after);
  SharedConstraint makeLink(View* before, View* after) const;
  void addAcross(View& view);
  void forgetLinks();

  Axis axis_;
  double spacing_ = 0;
  StackAlignment alignment_ = StackAlignment::fill;
  bool baselineRelative_ = false;
  std::vector<std::shared_ptr<View>> arranged_;
  std::vector<Link> links_;
  std::vector<SharedConstraint> across_;
};

}  // namespace linewatch::ui
