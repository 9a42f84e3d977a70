#pragma once

#include <QAbstractScrollArea>
#include <QElapsedTimer>
#include <QTimer>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <vector>

namespace linewatch::desktop {

/// One part of a column. Its widget exists only while the part is near the visible range.
struct ColumnPart {
  /// Makes the part's widget; null when there is nothing to show. A widget of a fixed width is placed at the
  /// leading edge; any other is as wide as the column.
  std::function<QWidget*()> make;
  /// Points above the part; no gap when the part has no widget.
  int gap = 0;
  /// Points; the part's height until its widget is made.
  int estimatedHeight = 0;
  /// Whether Tab stops at the part's widget.
  bool takesFocus = false;
};

/// A scrolling column of any number of parts. Only parts near the visible range have widgets. They are made
/// in slices of a few milliseconds, so that the main thread can handle other events in between. A part
/// without a widget counts with its estimated height; when the estimate is corrected, the visible parts keep
/// their places. Tab goes through the parts that take the focus, in order, wherever they are. Main thread.
class DetailsColumn final : public QAbstractScrollArea {
 public:
  /// `margin`: points between the content and the column's edges.
  explicit DetailsColumn(int margin);

  void clear();
  /// Returns the part's index. Parts are laid out in the next turn of the event loop, or by `layOut`.
  std::size_t add(ColumnPart part);
  /// Makes the part's widget again. To be called when `make` would make another widget than before.
  void remake(std::size_t index, int estimatedHeight);
  /// Makes and places the widgets near the visible range for one slice. The rest follows in later turns of
  /// the event loop.
  void layOut();
  /// Whether every widget near the visible range exists.
  bool isComplete() const { return !later_.isActive(); }
  /// The height of all parts and both margins at that width, in points.
  int contentHeight() const;
  std::size_t partCount() const { return slots_.size(); }
  /// The widgets that exist, in the order of their parts.
  std::vector<QWidget*> shownWidgets() const;

  /// Called when the content's height may have changed.
  void setHeightHandler(std::function<void()> handler) { heightDidChange_ = std::move(handler); }

 protected:
  void scrollContentsBy(int dx, int dy) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool focusNextPrevChild(bool next) override;

 private:
  struct Slot {
    ColumnPart part;
    int height = 0;
    /// The width for which `height` was measured; 0 when it is an estimate.
    int measuredWidth = 0;
    /// From the column's top to the part's gap, as last placed.
    int top = 0;
    bool isEmpty = false;

    int extent() const { return isEmpty ? 0 : part.gap + height; }
  };
  /// The part that keeps its place on screen while other parts get their heights.
  struct Anchor {
    std::size_t index = 0;
    /// From the part's top to the top of the visible range, in points.
    int offset = 0;
    /// Whether the column is scrolled to its end, and stays there.
    bool isAtEnd = false;
  };

  void scheduleLayout();
  int contentWidth() const;
  Anchor anchor() const;
  std::optional<std::size_t> focusedPart() const;
  std::optional<std::size_t> nextFocusPart(bool forward) const;
  /// Makes the part's widget, and scrolls if it is not visible.
  QWidget* reveal(std::size_t index);
  /// False when the slice ended before all parts near the anchor were made.
  bool makeWidgetsNear(const Anchor& anchor);
  void ensureWidget(std::size_t index);
  void measure(Slot& slot, QWidget& widget) const;
  void dropOutside(std::size_t first, std::size_t last);
  void updateTops();
  void place(const Anchor& anchor);
  void placeWidgets();
  bool isSliceOver() const;

  int margin_;
  std::vector<Slot> slots_;
  /// By the part's index.
  std::map<std::size_t, QWidget*> widgets_;
  QElapsedTimer slice_;
  QTimer later_;
  std::function<void()> heightDidChange_;
  bool isPlacing_ = false;
  /// While a revealed part is laid out: that part. Otherwise the first visible part is the anchor.
  std::optional<Anchor> revealed_;
};

}  // namespace linewatch::desktop
