#pragma once

#include <QAbstractScrollArea>
#include <QElapsedTimer>
#include <QTimer>
#include <cstddef>
#include <functional>
#include <map>
#include <vector>

namespace linewatch::desktop {

/// One part of a column: a widget that is made when it comes near the visible range.
struct ColumnPart {
  /// Makes the part's widget; may give null when there is nothing to show. A widget of a fixed width is
  /// placed at the leading edge; any other is as wide as the column.
  std::function<QWidget*()> make;
  /// Points above the part, unless it has nothing to show.
  int gap = 0;
  /// Points; the part's height until its widget has been made.
  int estimatedHeight = 0;
};

/// A scrolling column of any number of parts. Only the parts near the visible range have widgets, and these
/// are made in slices, so that the main thread is never held for long. Parts that have not been made count
/// with their estimated heights; what is visible does not move when the estimates are corrected. Main thread.
class DetailsColumn final : public QAbstractScrollArea {
 public:
  /// `margin`: points between the content and the column's edges.
  explicit DetailsColumn(int margin);

  void clear();
  /// Returns the part's index. Parts are laid out in the next turn of the event loop, or by `layOut`.
  std::size_t add(ColumnPart part);
  /// To be called when the part's `make` gives something else.
  void remake(std::size_t index, int estimatedHeight);
  /// Makes and places parts near the visible range for as long as a slice lasts; goes on later if necessary.
  void layOut();
  /// The height of all parts and both margins at that width, in points.
  int contentHeight() const;
  std::size_t partCount() const { return slots_.size(); }

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
  /// A point of the content that stays where it is seen.
  struct Anchor {
    std::size_t index = 0;
    int offset = 0;
    bool isAtEnd = false;
  };

  void layOutLater();
  int contentWidth() const;
  Anchor anchor() const;
  /// False when the slice ended before all parts near the anchor were made.
  bool makeNear(const Anchor& anchor);
  void ensure(std::size_t index);
  void measure(Slot& slot, QWidget& widget) const;
  void dropOutside(std::size_t first, std::size_t last);
  void updateTops();
  void place(const Anchor& anchor);
  void placeWidgets();
  void chainTabOrder();
  bool isSliceOver() const;

  int margin_;
  std::vector<Slot> slots_;
  /// By the part's index.
  std::map<std::size_t, QWidget*> widgets_;
  QElapsedTimer slice_;
  QTimer later_;
  std::function<void()> heightDidChange_;
  bool isPlacing_ = false;
  bool hasTabOrder_ = true;
};

}  // namespace linewatch::desktop
