#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "ui/layout/geometry.h"
#include "ui/layout/layout_constraint.h"
#include "ui/layout/layout_guide.h"

namespace linewatch::ui {

class LayoutEngine;

/// A rectangle with a frame that can hold others, e.g. a view. It gives the layout engine its input and keeps
/// the constraints between the items inside it.
///
/// A layout root is a box without a superbox, or one that became a root for good, e.g. a table cell. Each
/// root has an engine of its own, which gives frames to the boxes inside that are laid out by constraints.
/// The other boxes keep the frame that they were given.
///
/// Boxes say how large their content is and resist being made smaller or larger than that. Widths are solved
/// first, then content is asked for its height at that width, then heights are solved. Edges come out on the
/// pixel grid. A size that constraints make negative is empty. A text that the constraints make too low shows
/// fewer lines; the first text of a root always shows its first line. Main thread.
class LayoutBox : public LayoutItem {
 public:
  LayoutBox();
  ~LayoutBox() override;

  LayoutBox* owningBox() final { return this; }
  const LayoutBox* owningBox() const final { return this; }
  YAnchor firstBaselineAnchor() const { return YAnchor(term(LayoutAttribute::firstBaseline)); }
  YAnchor lastBaselineAnchor() const { return YAnchor(term(LayoutAttribute::lastBaseline)); }

  // ---- The tree ----

  virtual LayoutBox* superbox() const = 0;
  virtual std::size_t subboxCount() const = 0;
  virtual LayoutBox& subboxAt(std::size_t index) const = 0;
  /// Also true for the box itself.
  bool isDescendantOf(const LayoutBox& box) const;
  bool isLayoutRoot() const { return ownLayoutRoot_ || superbox() == nullptr; }
  LayoutBox& layoutRoot();
  /// A guide that another box owns is not added.
  void addLayoutGuide(const std::shared_ptr<LayoutGuide>& guide);

  // ---- Layout input ----

  /// In the superbox's coordinates.
  virtual const Rect& frame() const = 0;
  /// A rectangle of this box in the coordinates of a box that contains it.
  Rect convertRectTo(const Rect& rect, const LayoutBox& ancestor) const;
  virtual LayoutDirection layoutDirection() const = 0;
  /// Pixels a point.
  virtual double displayScale() const = 0;
  virtual bool isHidden() const = 0;
  bool isLaidOutByConstraints() const { return laidOutByConstraints_; }
  /// Has no effect on a layout root, which always keeps the frame that it was given.
  void setLaidOutByConstraints(bool byConstraints);

  /// The content's size in points; absent when the box has no content. The height is asked for at the width
  /// that the layout gave the box.
  virtual std::optional<double> intrinsicWidth() { return std::nullopt; }
  virtual std::optional<double> intrinsicHeight(double /*width*/) { return std::nullopt; }
  /// The part of `size.height` that the content fills when it does not fit, e.g. the height of whole lines.
  virtual double contentHeightWithin(const Size& size) { return size.height; }
  /// The height of one line of text; 0 without text.
  virtual double firstLineHeight(double /*width*/) { return 0; }
  /// The first baseline's distance below the top; absent: the box's bottom is its first baseline.
  virtual std::optional<double> firstBaselineFromTop() { return std::nullopt; }
  /// The last baseline's distance above the bottom.
  virtual double lastBaselineFromBottom() { return 0; }
  /// The box that gives this box its baseline: this one or one inside it.
  virtual LayoutBox& boxForFirstBaseline() { return *this; }
  virtual LayoutBox& boxForLastBaseline() { return *this; }
  /// To be called whenever the content's size or baselines may have changed.
  void invalidateIntrinsicContentSize();
  /// Requests a layout of this box, if it is a root, and of the boxes inside it.
  virtual void setNeedsLayout() = 0;

 protected:
  /// The frame that the engine found.
  virtual void setFrameFromLayout(const Rect& frame) = 0;

  /// Makes the box a layout root inside other boxes, for good.
  void becomeLayoutRoot() { ownLayoutRoot_ = true; }
  /// To be called once the box has a new superbox.
  void didEnterSuperbox();
  /// To be called while the superbox is still there. Constraints between items inside the box and items
  /// outside become inactive.
  void willLeaveSuperbox() const;
  /// To be called in the destructor of the owner of the subboxes, before they are destroyed.
  void endLayout();

  /// Gives the frames inside a layout root.
  void layOutByConstraints();
  /// The size that a layout root's constraints allow when its width and height are pulled towards `target`
  /// with the priorities.
  Size fittingSize(const Size& target, LayoutPriority horizontal, LayoutPriority vertical);
  /// Something that the fitting size depends on has changed.
  void forgetFittingSize();
  /// The content is measured again at the next layout.
  void markContentChanged() { contentChanged_ = true; }

 private:
  friend class LayoutConstraint;
  friend class LayoutEngine;

  void keepConstraint(const SharedConstraint& constraint);
  void dropConstraint(const LayoutConstraint& constraint);
  void constraintDidChange(LayoutConstraint& constraint);
  void dropConstraintsWith(const LayoutBox& leaving);
  void structureDidChange();
  LayoutEngine& engine();

  std::vector<std::shared_ptr<LayoutGuide>> guides_;
  /// The active constraints between items whose nearest common box is this one.
  std::vector<SharedConstraint> constraints_;
  std::unique_ptr<LayoutEngine> engine_;
  bool laidOutByConstraints_ = false;
  bool ownLayoutRoot_ = false;
  bool contentChanged_ = true;
};

}  // namespace linewatch::ui
