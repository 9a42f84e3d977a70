#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "ui/layout/constraint_system.h"
#include "ui/layout/layout_priority.h"
#include "ui/layout/slot_table.h"
#include "ui/view.h"

namespace linewatch::ui {

/// Solves the constraints of one layout root and gives its views their frames. Made when the root is first
/// laid out and again after its tree has changed; every other change is taken into the systems of the two
/// axes.
///
/// Horizontal lengths count from the leading edge, so that a right-to-left layout is the same layout,
/// mirrored when the frames are given.
class LayoutEngine {
 public:
  explicit LayoutEngine(View& root);
  ~LayoutEngine();
  LayoutEngine(const LayoutEngine&) = delete;
  LayoutEngine& operator=(const LayoutEngine&) = delete;

  /// Whether the engine was made for the root's present direction and scale.
  bool fitsEnvironment() const {
    return direction_ == root_.layoutDirection() && scale_ == root_.displayScale();
  }
  /// A constraint was activated, deactivated or has another constant.
  void constraintDidChange(const SharedConstraint& constraint);
  /// Solves for the root's size and gives the frames.
  void layOut();
  Size fittingSize(const Size& target, LayoutPriority horizontal, LayoutPriority vertical);
  /// Something that the fitting size depends on has changed.
  void forgetFittingSize() { fitting_.reset(); }

 private:
  using Variable = ConstraintSystem::Variable;
  using RowId = std::optional<ConstraintSystem::Id>;

  struct ItemAxis {
    /// Not used for the root, whose position is 0.
    Variable position = 0;
    Variable size = 0;
    RowId framePosition, frameSize, hugging, resistance, notNegative;
  };

  struct Item {
    LayoutItem* item = nullptr;
    /// Null for a guide.
    View* view = nullptr;
    PerAxis<ItemAxis> axes;
    std::optional<double> measuredWidth;
    std::optional<double> firstBaselineFromTop;
    double lastBaselineFromBottom = 0;
    /// Of a text that is shown: what keeps it below the root's top and above its bottom.
    RowId belowTop, aboveBottom;
    bool isRoot = false;
  };

  /// An active constraint; its row is absent while it is left out of the layout.
  struct Entry {
    SharedConstraint constraint;
    LinearConstraint linear;
    RowId row;
    bool queued = false;
  };

  struct Edges {
    double low = 0;
    double high = 0;
  };

  struct Fitting {
    Size target;
    LayoutPriority horizontal;
    LayoutPriority vertical;
    Size result;
  };

  void collect(View& view, std::vector<SharedConstraint>& constraints);
  std::uint32_t ensureItem(LayoutItem& item);

  void addEntry(const SharedConstraint& constraint);
  void updateEntry(Entry& entry);
  void removeEntry(std::uint32_t slot);
  void processQueue();
  std::optional<LinearConstraint> linearFor(const LayoutConstraint& constraint);
  LayoutItem& itemFor(LayoutItem& item, LayoutAttribute attribute) const;
  void addAttribute(LinearConstraint& linear, Axis axis, Item& item, LayoutAttribute attribute,
                    double factor);
  static Axis axisOf(const LayoutConstraint& constraint);
  static bool dependsOnWidths(const LayoutConstraint& constraint);

  void solve(const Size& rootSize, LayoutPriority horizontal, LayoutPriority vertical);
  void setRow(RowId& row, Axis axis, const LinearConstraint& linear);
  void setContentRows(Item& item, Axis axis, std::optional<double> length);
  void setFrameRows(Item& item);
  void updateWidths();
  void measureHeights();
  void measureHeight(Item& item);
  void readBaselines(Item& item);
  void keepInRoot(Item& item);
  bool shortenTexts();
  void updateDependentConstraints();
  void logLeftOut(Axis axis);

  Edges edges(const Item& item, Axis axis) const;
  /// The width that is mirrored in: the root's, on the pixel grid, so that mirrored edges are on it too.
  double mirrorWidth() const;
  Rect frameInRoot(const Item& item) const;
  void giveFrames(View& view, const Point& origin);

  View& root_;
  LayoutDirection direction_;
  double scale_;
  PerAxis<ConstraintSystem> systems_;
  std::vector<Item> items_;
  SlotTable<Entry> entries_;
  std::vector<std::uint32_t> queue_;
  std::vector<std::uint32_t> dependentEntries_;
  PerAxis<std::optional<LayoutPriority>> rootPriority_;
  std::optional<Fitting> fitting_;
};

}  // namespace linewatch::ui
