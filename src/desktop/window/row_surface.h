#pragma once

#include <QWidget>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>

#include "desktop/window/row_words.h"
#include "desktop/window/touch_gesture.h"
#include "ui/pointer_tracker.h"
#include "ui/table_view.h"

namespace linewatch::desktop {

/// Draws a view that contains a table with one section. Passes mouse, touch and key events to the rows.
class RowSurface final : public QWidget {
 public:
  using Describe = std::function<RowWords(std::size_t row)>;

  /// `describe` returns the words of a row for assistive technology.
  RowSurface(std::shared_ptr<ui::View> root, std::shared_ptr<ui::TableView> table, Describe describe,
             QWidget* parent = nullptr);
  ~RowSurface() override;

  std::size_t rowCount() const;
  RowWords wordsOf(std::size_t row) const { return describe_(row); }
  /// Whether pressing the row opens something.
  bool opens(std::size_t row) const { return table_->highlightsRow({0, row}); }
  /// The row's rectangle in the surface's coordinates. It is outside of the surface if the row is not
  /// visible.
  QRect rectOf(std::size_t row) const;
  std::optional<std::size_t> rowAt(const QPoint& point) const;
  /// The row that keys act on; absent without rows.
  std::optional<std::size_t> currentRow() const;
  void setCurrentRow(std::size_t row);
  /// The same as a tap on the row.
  void pressRow(std::size_t row);
  void scrollToRow(std::size_t row);

  /// The radius of the two lower corners, in points.
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
  void makeCurrent(std::size_t row);
  void layOut();
  void paintFill(QPainter& painter, std::size_t row) const;
  void paintFocus(QPainter& painter) const;
  void paintPosition(QPainter& painter) const;
  void pressBegan(const QPointF& position);
  void pressEnded(const QPointF& position);
  void mouseDidMove(std::optional<QPoint> place);
  void findHoveredRow();
  void cancelPress();
  bool scrollBy(double points);
  std::optional<std::size_t> rowForKey(int key) const;
  std::size_t visibleRowCount() const;
  void rowsDidReload();

  std::shared_ptr<ui::View> root_;
  std::shared_ptr<ui::TableView> table_;
  Describe describe_;
  ui::PointerTracker pointer_;
  TouchGesture touch_;
  double cornerRadius_ = 0;
  std::size_t currentRow_ = 0;
  /// The last announced words of the current row.
  RowWords currentWords_;
  /// The position of the mouse; absent when it is outside.
  std::optional<QPoint> mouse_;
  std::optional<std::size_t> hoveredRow_;
  bool focusIsShown_ = false;
  bool isPainting_ = false;
};

}  // namespace linewatch::desktop
