#pragma once

#include <QWidget>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>

#include "desktop/window/row_words.h"
#include "ui/pointer_tracker.h"
#include "ui/table_view.h"

class QTouchEvent;

namespace linewatch::desktop {

/// A part of a window that draws a view with a table in it, and brings mouse, touch and keys to the table's
/// rows. The table has one section, and fills the view.
class RowSurface final : public QWidget {
 public:
  using Describe = std::function<RowWords(std::size_t row)>;

  /// `describe` is asked for rows that the table has.
  RowSurface(std::shared_ptr<ui::View> root, std::shared_ptr<ui::TableView> table, Describe describe,
             QWidget* parent = nullptr);
  ~RowSurface() override;

  std::size_t rowCount() const;
  RowWords wordsOf(std::size_t row) const { return describe_(row); }
  /// Whether a press on the row does anything.
  bool opens(std::size_t row) const { return table_->highlightsRow({0, row}); }
  /// In the surface's coordinates, wherever the row has been scrolled to.
  QRect rectOf(std::size_t row) const;
  std::optional<std::size_t> rowAt(const QPoint& point) const;
  /// The row that keys act on; none without rows.
  std::optional<std::size_t> currentRow() const;
  void setCurrentRow(std::size_t row);
  /// What a tap on the row does.
  void pressRow(std::size_t row);
  void scrollToRow(std::size_t row);

  /// Points by which the two lower corners are rounded.
  void setCornerRadius(double radius);

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  struct Touch {
    /// Of the finger that counts.
    int finger = 0;
    double startY = 0;
    double lastY = 0;
    bool scrolls = false;
  };

  void makeCurrent(std::size_t row);
  void layOut();
  void paintFill(QPainter& painter, std::size_t row) const;
  void paintFocus(QPainter& painter) const;
  void paintPosition(QPainter& painter) const;
  void pressBegan(const QPointF& position);
  void pointerDidMove(std::optional<QPoint> place);
  void findHoveredRow();
  void cancelPress();
  bool scrollBy(double points);
  void handleTouch(const QTouchEvent& event);
  void touchBegan(int finger, const QPointF& position);
  void touchMoved(const QPointF& position);
  void touchEnded(const QPointF& position);
  std::optional<std::size_t> rowForKey(int key) const;
  std::size_t rowsInSight() const;
  void rowsDidReload();

  std::shared_ptr<ui::View> root_;
  std::shared_ptr<ui::TableView> table_;
  Describe describe_;
  ui::PointerTracker pointer_;
  double cornerRadius_ = 0;
  std::size_t currentRow_ = 0;
  /// The current row's, as they were last told.
  RowWords currentWords_;
  /// Where the mouse rests; none when it is elsewhere.
  std::optional<QPoint> mouse_;
  std::optional<std::size_t> hoveredRow_;
  std::optional<Touch> touch_;
  bool focusIsShown_ = false;
  bool isPainting_ = false;
};

}  // namespace linewatch::desktop
