#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "ui/layout/constraint_system.h"
#include "ui/layout/layout_box.h"
#include "ui/layout/layout_priority.h"
#include "ui/layout/slot_table.h"

namespace linewatch::ui {

/// Solves the constraints of one layout root and gives its boxes their frames. It is made at the root's first
/// layout, and made again after boxes were added or removed; any other change updates the systems of both
/// axes.
///
/// Horizontal lengths are measured from the leading edge. A right-to-left layout is solved in the same way
/// and mirrored when frames are given.
class LayoutEngine {
 public:
  explicit LayoutEngine(LayoutBox& root);
  ~LayoutEngine();
  LayoutEngine(const LayoutEngine&) = delete;
  LayoutEngine& operator=(const LayoutEngine&) = delete;

  /// False once the root has another direction or scale than the engine was made for.
  bool fitsEnvironment() const {
    return direction_ == root_.layoutDirection() && scale_ == root_.displayScale();
  }
  /// To be called when a constraint was activated or deactivated or has another constant.
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
    /// Unused for the root, whose position is 0.
    Variable position = 0;
    Variable size = 0;
    RowId framePosition, frameSize, hugging, resistance, notNegative;
  };

  struct Edges {
    double low = 0;
    double high = 0;
  };

  struct Item {
    LayoutItem* item = nullptr;
    /// Null for a guide.
    LayoutBox* box = nullptr;
    PerAxis<ItemAxis> axes;
    std::optional<double> measuredWidth;
    std::optional<double> firstBaselineFromTop;
    double lastBaselineFromBottom = 0;
    /// Rows that keep a shown text, or its baselines, inside the root.
    RowId topInside, bottomInside;
    /// Keeps a line of a text while texts lose lines.
    RowId oneLine;
    /// Replaces the solved vertical edges of a text that keeps its first line.
    std::optional<Edges> firstLine;
    bool isRoot = false;
  };

  /// An active constraint. Its row is absent while the constraint is left out of the layout.
  struct Entry {
    SharedConstraint constraint;
    LinearConstraint linear;
    RowId row;
    bool queued = false;
  };

  struct Fitting {
    Size target;
    LayoutPriority horizontal;
    LayoutPriority vertical;
    Size result;
  };

  void collect(LayoutBox& box, std::vector<SharedConstraint>& constraints);
  std::uint32_t ensureItem(LayoutItem& item);

  void addEntry(const SharedConstraint& constraint);
  void updateEntry(Entry& entry);
  void removeEntry(std::uint32_t slot);
  void processQueue();
  std::optional<LinearConstraint> linearFor(const LayoutConstraint& constraint);
  LayoutItem& itemFor(LayoutItem& item, LayoutAttribute attribute) const;
  void addAttribute(LinearConstraint& linear, Item& item, LayoutAttribute attribute, double sign);
  static Axis axisOf(const LayoutConstraint& constraint);

  void solve(const Size& rootSize, LayoutPriority horizontal, LayoutPriority vertical);
  void pullRootSize(Axis axis, double size, LayoutPriority priority);
  void setRow(RowId& row, Axis axis, const LinearConstraint& linear);
  void setContentRows(Item& item, Axis axis, std::optional<double> length);
  void setFrameRows(Item& item);
  void updateWidths();
  void measureHeights();
  void measureHeight(Item& item);
  void readBaselines(Item& item);
  void updateBaselineConstraints();
  void keepBaselinesInRoot(Item& item);
  void keepInRoot(Item& item, double fromTop, double fromBottom);
  bool isShownText(const Item& item) const;
  void fitTexts();
  bool isTooLow(const Item& item) const;
  void keepOneLine(Item& item, LayoutPriority priority);
  void shortenText(Item& item);
  void keepFirstLine(Item& item);
  void logLeftOut(Axis axis);

  Edges edges(const Item& item, Axis axis) const;
  /// The root's width on the pixel grid, so that mirrored edges are on the grid too.
  double mirrorWidth() const;
  Rect frameInRoot(const Item& item) const;
  void giveFrames(LayoutBox& box, const Point& origin);

  LayoutBox& root_;
  LayoutDirection direction_;
  double scale_;
  PerAxis<ConstraintSystem> systems_;
  std::vector<Item> items_;
  SlotTable<Entry> entries_;
  std::vector<std::uint32_t> queue_;
  /// Constraints on baselines: their rows are made again when the baselines change.
  std::vector<std::uint32_t> baselineEntries_;
  PerAxis<std::optional<LayoutPriority>> rootPriority_;
  std::optional<Fitting> fitting_;
};

}  // namespace linewatch::ui
