#include "desktop/window/window_style.h"

#include <QApplication>
#include <QLabel>
#include <QScreen>
#include <algorithm>
#include <cmath>

#include "desktop/drawing/typefaces.h"
#include "desktop/window/window_colors.h"
#include "platform/platform.h"
#include "ui/interface_settings.h"
#include "ui/text_style.h"

namespace linewatch::desktop {

namespace {

// Room for a title bar and the edges of a window, in points.
constexpr QSize kRoomAroundWindow(16, 48);

}  // namespace

double windowTextScale() {
  return ui::scaleFactor(ui::TextStyle::body, platform().interfaceSettings().textSizeCategory());
}

void resizeWithText(QWidget& window, QSize usual) {
  const QSize room = window.screen()->availableGeometry().size() - kRoomAroundWindow;
  const double growth = std::max(1.0, windowTextScale());
  window.resize((QSizeF(usual) * growth).toSize().boundedTo(room));
}

QFont windowFont(double points, QFont::Weight weight) { return qtFont(points * windowTextScale(), weight); }

QLabel* plainLabel(const QString& text, const QFont& font, TextTone tone) {
  auto* const label = new QLabel;
  // Set before the text. Otherwise the label guesses the format, and may take a feed's text for HTML.
  label->setTextFormat(Qt::PlainText);
  label->setText(text);
  label->setWordWrap(true);
  label->setFont(font);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  // By default a selectable text is aligned by its own direction, not by the interface's.
  const Qt::Alignment side = QApplication::isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft;
  label->setAlignment(side | Qt::AlignAbsolute | Qt::AlignVCenter);
  if (tone == TextTone::faint) label->setForegroundRole(kFaintRole);
  if (tone == TextTone::alarming) label->setForegroundRole(kAlarmRole);
  return label;
}

std::int64_t windowArtworkStep(std::int64_t usual) {
  // A step is an eighth of the size at step 3.
  return std::max<std::int64_t>(usual,
                                std::lround((1 + (double(usual) - 3) / 8) * windowTextScale() * 8 - 5));
}

}  // namespace linewatch::desktop
