#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "ui/canvas.h"
#include "ui/layout/geometry.h"
#include "ui/layout/layout_box.h"

namespace linewatch::ui {

enum class PointerPhase : std::uint8_t { pressed, moved, released, cancelled };

/// A rectangle that draws, holds other views and lays them out. Main thread.
///
/// A change that affects the layout (a constraint, a content's size, a frame, the direction) marks the layout
/// root alone, and `layoutIfNeeded` lays out only what was marked.
class View : public LayoutBox {
 public:
  View();
  explicit View(const Rect& frame);
  ~View() override;

  // ---- The tree ----

  View* superview() const { return superview_; }
  const std::vector<std::shared_ptr<View>>& subviews() const { return subviews_; }
  /// Adds the view in front of the others and removes it from its former superview. A view that contains this
  /// one is not added.
  void addSubview(const std::shared_ptr<View>& view);
  void insertSubview(const std::shared_ptr<View>& view, std::size_t index);
  /// Constraints between this view or its subviews and other views become inactive.
  void removeFromSuperview();

  // ---- Geometry ----

  /// In the superview's coordinates. All numbers are finite and sizes are not negative.
  const Rect& frame() const final { return frame_; }
  void setFrame(const Rect& frame);
  Rect bounds() const { return {0, 0, frame_.width, frame_.height}; }
  Point convertPointFrom(const Point& point, const View& ancestor) const;

  /// The view's own direction, else the superview's, else the interface settings' direction.
  LayoutDirection layoutDirection() const final;
  void setLayoutDirection(std::optional<LayoutDirection> direction);
  /// Pixels per point; inherited likewise.
  double displayScale() const final;
  void setDisplayScale(std::optional<double> scale);
  /// To be called on the topmost view after the interface settings have changed.
  void environmentDidChange();
  double snappedToPixel(double length) const { return ui::snappedToPixel(length, displayScale()); }

  // ---- Layout ----

  /// Whether the width and the height grow with the superview's. For views that constraints do not place.
  void setResizesWithSuperview(bool width, bool height);
  /// The view that gives this view its baselines: this one or one inside it.
  virtual View& viewForFirstBaselineLayout() { return *this; }
  virtual View& viewForLastBaselineLayout() { return *this; }

  void setNeedsLayout() final;
  bool needsLayout() const { return needsLayout_ || descendantNeedsLayout_; }
  /// Lays out the marked views of this view's layout root and inside it.
  void layoutIfNeeded();
  /// Lays out the subviews. An override calls it too.
  virtual void layoutSubviews();
  /// The size that a layout root's constraints allow when its width and height are pulled towards `size` with
  /// the priorities. A view that is no layout root returns its own size.
  virtual Size systemLayoutSizeFittingSize(const Size& size, LayoutPriority withHorizontalFittingPriority,
                                           LayoutPriority verticalFittingPriority);

  // ---- Appearance ----

  bool isHidden() const final { return hidden_; }
  /// A hidden view keeps its place in the layout, except in a stack view.
  void setHidden(bool hidden);
  double alpha() const { return alpha_; }
  /// From 0 to 1; a value that is not a number counts as 1.
  void setAlpha(double alpha);
  void setClipsToBounds(bool clips);

  /// The view's own content, behind the subviews.
  virtual void draw(Canvas& /*canvas*/) {}
  /// Draws the view and everything inside it; the canvas's origin is the superview's.
  void render(Canvas& canvas);
  void setNeedsDisplay();
  /// For the window: on a view without superview, called when something inside needs a layout or a drawing,
  /// often several times.
  void setInvalidationHandler(std::function<void()> handler) { invalidationHandler_ = std::move(handler); }

  // ---- Input ----

  /// The frontmost view at the point, this one or one inside it; null outside. In this view's coordinates.
  View* hitTest(const Point& point);
  /// True when the view accepts the event; after a press it then gets all events up to the release. Otherwise
  /// the superview is asked.
  virtual bool handlePointer(PointerPhase /*phase*/, const Point& /*point*/) { return false; }
  /// Scrolls the content up by so many points; false when the view cannot scroll.
  virtual bool handleScroll(double /*deltaY*/) { return false; }

 protected:
  /// The subview was hidden, shown or removed.
  virtual void shownSubviewsDidChange(View& /*subview*/) {}
  /// A view inside was marked for layout.
  virtual void descendantDidNeedLayout() {}
  /// Draws in front of the subviews.
  virtual void drawOverlay(Canvas& /*canvas*/) {}

 private:
  LayoutBox* superbox() const final { return superview_; }
  std::size_t subboxCount() const final { return subviews_.size(); }
  LayoutBox& subboxAt(std::size_t index) const final { return *subviews_[index]; }
  LayoutBox& boxForFirstBaseline() final { return viewForFirstBaselineLayout(); }
  LayoutBox& boxForLastBaseline() final { return viewForLastBaselineLayout(); }
  void setFrameFromLayout(const Rect& frame) final;

  void layoutTree();
  void markForLayout();
  void giveUpLayout();
  void resizeSubviews(const Size& before);
  void invalidate();

  View* superview_ = nullptr;
  std::vector<std::shared_ptr<View>> subviews_;

  Rect frame_;
  std::optional<LayoutDirection> direction_;
  std::optional<double> scale_;
  bool resizesWidth_ = false;
  bool resizesHeight_ = false;
  bool needsLayout_ = true;
  bool descendantNeedsLayout_ = false;

  bool hidden_ = false;
  bool clipsToBounds_ = false;
  double alpha_ = 1;
  std::function<void()> invalidationHandler_;
};

}  // namespace linewatch::ui
