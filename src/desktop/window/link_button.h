#pragma once

#include <QAbstractButton>

namespace linewatch::desktop {

/// A button that looks like a link.
class LinkButton final : public QAbstractButton {
 public:
  explicit LinkButton(const QString& text);

  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QString shownText() const;
};

}  // namespace linewatch::desktop
