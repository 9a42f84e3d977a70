#pragma once

#include <QLineEdit>

namespace linewatch::desktop {

/// An input field with a rounded outline. The class paints the outline itself, because a style sheet keeps
/// the old colours when the palette changes.
class OutlinedField final : public QLineEdit {
 public:
  OutlinedField();

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace linewatch::desktop
