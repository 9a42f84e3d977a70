#pragma once

#include <QAbstractButton>
#include <QFont>
#include <cstdint>

namespace linewatch::desktop {

/// A button draws its body this much inside of its bounds, in points, to have room for the focus.
inline constexpr int kButtonRing = 3;

/// A button with rounded corners. A dialog has one primary button, for its next step.
class ActionButton final : public QAbstractButton {
 public:
  enum class Emphasis : std::uint8_t { primary, plain };

  /// In the windows' font, which needs an installed platform.
  explicit ActionButton(const QString& text, Emphasis emphasis = Emphasis::plain);
  ActionButton(const QString& text, const QFont& font, Emphasis emphasis = Emphasis::plain);

  void setEmphasis(Emphasis emphasis);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QColor fill() const;

  Emphasis emphasis_;
};

}  // namespace linewatch::desktop
