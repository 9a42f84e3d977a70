#pragma once

#include <QAbstractButton>

namespace linewatch::desktop {

/// The button of the current row of a list, for the keyboard and for assistive technology. The list draws the
/// button of every row for the mouse; this one only adds the focus to it.
class RowMenuButton final : public QAbstractButton {
 public:
  /// `parent`: also the list's parent.
  explicit RowMenuButton(QWidget* parent);

  QSize sizeHint() const override { return size(); }

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace linewatch::desktop
