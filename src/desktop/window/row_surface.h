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

/// Draws a view that is filled by a table with one section, and passes mouse, touch and key events to the
/// table's rows.
class RowSurface final : public QWidget {
 public:
  using Describe = std::function<RowWords(std::size_t row)>;

  /// `describe` gives the words of an existing row.
  RowSurface(std::shared_ptr<ui::View> root, std::shared_ptr<ui::TableView> table, Describe describe,
             QWidget* parent = nullptr);
  ~RowSurface() override;

  std::size_t rowCount() const;
  RowWords wordsOf(std::size_t row) const { return describe_(row); }
  /// Whether pressing the row does anything.
  bool opens(std::size_t row) const { return table_->highlightsRow({0, row}); }
  /// The row's rectangle in the surface's coordinates; outside of the surface when it is scrolled out.
  QRect rectOf(std::size_t row) const;
  std::optional<std::size_t> rowAt(const QPoint& point) const;
  /// The row that keys act on; absent when there are no rows.
  std::optional<std::size_t> currentRow() const;
  void setCurrentRow(std::size_t row);
  /// Does what a tap on the row does.
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
  void pointerDidMove(std::optional<QPoint> place);
  void findHoveredRow();
  void cancelPress();
  bool scrollBy(double points);
  std::optional<std::size_t> rowForKey(int key) const;
  std::size_t rowsInSight() const;
  void rowsDidReload();

  std::shared_ptr<ui::View> root_;
  std::shared_ptr<ui::TableView> table_;
  Describe describe_;
  ui::PointerTracker pointer_;
  TouchGesture touch_;
  double cornerRadius_ = 0;
  std::size_t currentRow_ = 0;
  /// The words of the current row that were announced last.
  RowWords currentWords_;
  /// The position of the mouse; absent when it is outside.
  std::optional<QPoint> mouse_;
  std::optional<std::size_t> hoveredRow_;
  bool focusIsShown_ = false;
  bool isPainting_ = false;
};

}  // namespace linewatch::desktop
