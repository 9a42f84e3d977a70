#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "ui/canvas.h"
#include "ui/color.h"
#include "ui/geometry.h"
#include "ui/layout_constraint.h"
#include "ui/layout_guide.h"

namespace linewatch::ui {

class LayoutEngine;

enum class PointerPhase : std::uint8_t { pressed, moved, released, cancelled };

/// A rectangle that draws, holds other views and lays them out. Main thread.
///
/// Layout. A view that is not `laidOutByConstraints` has the frame that it was given; the others are placed
/// by the active constraints of their layout root, the nearest view up the tree that is one (a view without
/// superview, a table's cell). Views say how large their content is, and resist being made smaller or larger
/// than that with their priorities. Widths are solved first, then content is asked for its height at that
/// width, then heights are solved. Edges come out on the pixel grid. A size that constraints make negative is
/// empty.
///
/// Whatever changes the layout (a constraint, a content's size, a frame, the direction) marks the layout root
/// alone, and `layoutIfNeeded` does no more than what was marked.
class View : public LayoutItem {
 public:
  View();
  explicit View(const Rect& frame);
  ~View() override;

  // ---- The tree ----

  View* owningView() override { return this; }
  const View* owningView() const override { return this; }
  View* superview() const { return superview_; }
  const std::vector<std::shared_ptr<View>>& subviews() const { return subviews_; }
  bool isDescendantOf(const View& view) const;
  /// Adds the view in front of the others; takes it out of where it was. A view that contains this one is not
  /// added.
  void addSubview(const std::shared_ptr<View>& view);
  void insertSubview(const std::shared_ptr<View>& view, std::size_t index);
  /// Constraints with views that stay behind become inactive.
  void removeFromSuperview();

  void addLayoutGuide(const std::shared_ptr<LayoutGuide>& guide);
  void removeLayoutGuide(const std::shared_ptr<LayoutGuide>& guide);

  // ---- Geometry ----

  /// In the superview's coordinates; sizes are never negative and nothing is not a number.
  const Rect& frame() const { return frame_; }
  void setFrame(const Rect& frame);
  Rect bounds() const { return {0, 0, frame_.width, frame_.height}; }
  /// A rectangle of this view in the coordinates of a view that contains it.
  Rect convertRectTo(const Rect& rect, const View& ancestor) const;
  Point convertPointFrom(const Point& point, const View& ancestor) const;

  /// The superview's, unless the view has its own; the interface settings' at the top.
  LayoutDirection layoutDirection() const;
  void setLayoutDirection(std::optional<LayoutDirection> direction);
  /// Likewise.
  double displayScale() const;
  void setDisplayScale(std::optional<double> scale);
  /// To be called on the topmost view when the interface settings have changed.
  void environmentDidChange();
  double snappedToPixel(double length) const { return ui::snappedToPixel(length, displayScale()); }

  // ---- Layout ----

  bool isLaidOutByConstraints() const { return laidOutByConstraints_; }
  /// A layout root has the frame that it was given all the same.
  void setLaidOutByConstraints(bool byConstraints);
  /// Where the superview's size changes: whether a frame grows with it.
  void setResizesWithSuperview(bool width, bool height);

  YAnchor firstBaselineAnchor() const { return YAnchor(term(LayoutAttribute::firstBaseline)); }
  YAnchor lastBaselineAnchor() const { return YAnchor(term(LayoutAttribute::lastBaseline)); }

  /// The content's size; absent where the view has none. The height is asked for at the width that the layout
  /// gave the view.
  virtual std::optional<double> intrinsicWidth() { return std::nullopt; }
  virtual std::optional<double> intrinsicHeight(double /*width*/) { return std::nullopt; }
  /// How much of a size that is too small for the content the content fills: whole lines, of a text.
  virtual double contentHeightWithin(const Size& size) { return size.height; }
  /// To be called whenever the answers may have changed, the baselines' too.
  void invalidateIntrinsicContentSize();
  /// The first baseline's distance below the top; absent: the view's bottom is its first baseline.
  virtual std::optional<double> firstBaselineFromTop() { return std::nullopt; }
  /// The last baseline's distance above the bottom.
  virtual double lastBaselineFromBottom() { return 0; }
  /// The view, this one or one inside, whose baselines are this view's.
  virtual View& viewForFirstBaselineLayout() { return *this; }
  virtual View& viewForLastBaselineLayout() { return *this; }

  /// Whether the constraints of this view's inside are solved apart from those around it.
  bool isLayoutRoot() const { return superview_ == nullptr || ownLayoutRoot_; }
  View& layoutRoot();
  void setNeedsLayout();
  bool needsLayout() const { return needsLayout_ || descendantNeedsLayout_; }
  /// Lays out what was marked in this view's layout root and below.
  void layoutIfNeeded();
  /// The normal layout of the inside; whoever overrides this calls it.
  virtual void layoutSubviews();
  /// The size of a layout root whose width and height are pulled towards `target` with the priorities and
  /// that its constraints make as small or large as they must be. Any other view has its own size.
  virtual Size systemLayoutSizeFittingSize(const Size& target, LayoutPriority horizontal,
                                           LayoutPriority vertical);

  // ---- Appearance ----

  bool isHidden() const { return hidden_; }
  /// A hidden view keeps its place in the layout, save among a stack view's arranged views.
  void setHidden(bool hidden);
  double alpha() const { return alpha_; }
  /// From 0 to 1; what is not a number counts as 1.
  void setAlpha(double alpha);
  void setBackgroundColor(const Color& color);
  void setClipsToBounds(bool clips);

  /// The view's own content, between the background and the subviews.
  virtual void draw(Canvas& /*canvas*/) {}
  /// Draws the view with all inside; the canvas's origin is the superview's.
  void render(Canvas& canvas);
  void setNeedsDisplay();
  /// Called when something in the tree of this view, which has no superview, is to be laid out or drawn;
  /// often more than once. For the window.
  void setInvalidationHandler(std::function<void()> handler) { invalidationHandler_ = std::move(handler); }

  // ---- Input ----

  /// The frontmost view inside this one at the point, which is in this view's coordinates; null outside.
  View* hitTest(const Point& point);
  /// True when the view does something with pointers: it then gets everything up to the release. Otherwise
  /// its superview is asked.
  virtual bool handlePointer(PointerPhase /*phase*/, const Point& /*point*/) { return false; }
  /// Points to move the content up; true when the view scrolls.
  virtual bool handleScroll(double /*deltaY*/) { return false; }

 protected:
  /// Makes the view a layout root inside other views, for good.
  void becomeLayoutRoot();
  /// The subview was hidden or shown, or is no longer one.
  virtual void shownSubviewsDidChange(View& /*subview*/) {}
  /// Something inside was marked for layout.
  virtual void descendantDidNeedLayout() {}
  /// In front of the subviews.
  virtual void drawOverlay(Canvas& /*canvas*/) {}

 private:
  friend class LayoutConstraint;
  friend class LayoutEngine;

  void keepConstraint(const SharedConstraint& constraint);
  void dropConstraint(const LayoutConstraint& constraint);
  void constraintDidChange(LayoutConstraint& constraint);
  void dropConstraintsWith(const View& leaving);
  void structureDidChange();
  LayoutEngine& engine();

  void layoutTree();
  void markForLayout();
  void giveUpLayout();
  void setFrameFromLayout(const Rect& frame);
  void resizeSubviews(const Size& before);
  void invalidate();

  View* superview_ = nullptr;
  std::vector<std::shared_ptr<View>> subviews_;
  std::vector<std::shared_ptr<LayoutGuide>> guides_;
  /// Those that are active between items of this view's tree.
  std::vector<SharedConstraint> constraints_;
  std::unique_ptr<LayoutEngine> engine_;

  Rect frame_;
  std::optional<LayoutDirection> direction_;
  std::optional<double> scale_;
  bool laidOutByConstraints_ = false;
  bool resizesWidth_ = false;
  bool resizesHeight_ = false;
  bool ownLayoutRoot_ = false;
  bool needsLayout_ = true;
  bool descendantNeedsLayout_ = false;
  bool contentChanged_ = true;

  bool hidden_ = false;
  bool clipsToBounds_ = false;
  double alpha_ = 1;
  Color backgroundColor_ = SemanticColor::clear;
  std::function<void()> invalidationHandler_;
};

}  // namespace linewatch::ui
