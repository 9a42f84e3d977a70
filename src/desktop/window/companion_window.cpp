#include "desktop/window/companion_window.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <algorithm>
#include <cmath>
#include <utility>

#include "desktop/drawing/typefaces.h"
#include "desktop/window/widget_role.h"
#include "desktop/window/window_colors.h"
#include "platform/platform.h"
#include "presentation/memory_constrained_artwork_cache.h"
#include "ui/interface_settings.h"
#include "ui/text_style.h"

namespace linewatch::desktop {

namespace {

double textScale() {
  return ui::scaleFactor(ui::TextStyle::body, platform().interfaceSettings().textSizeCategory());
}

}  // namespace

CompanionWindow::CompanionWindow(SharedWindowTexts texts)
    : texts_(std::move(texts)), artworkCache_(memoryConstrainedImageViewCache()) {
  // Closing this window does not end the program; closing the panel does.
  setAttribute(Qt::WA_QuitOnClose, false);
  setAccessibleRole(*this, QAccessible::Window);
  auto* const closing = new QAction(this);
  closing->setShortcuts({Qt::CTRL | Qt::Key_W});
  connect(closing, &QAction::triggered, this, [this] { close(); });
  addAction(closing);
  showPalette();
}

QFont CompanionWindow::font(double points, QFont::Weight weight) const {
  return qtFont(points * textScale(), weight);
}

QLabel* CompanionWindow::makeLabel(const QString& text, const QFont& font, Tone tone) const {
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
  if (tone == Tone::faint) label->setForegroundRole(kFaintRole);
  if (tone == Tone::alarming) label->setForegroundRole(kAlarmRole);
  return label;
}

std::int64_t CompanionWindow::artworkStep(std::int64_t usual) const {
  // A step is an eighth of the size at step 3.
  return std::max<std::int64_t>(usual, std::lround((1 + (double(usual) - 3) / 8) * textScale() * 8 - 5));
}

void CompanionWindow::showInFront() {
  show();
  raise();
  activateWindow();
}

void CompanionWindow::showPalette() { setPalette(cardPalette(QApplication::palette())); }

bool CompanionWindow::event(QEvent* event) {
  if (event->type() == QEvent::ApplicationPaletteChange) showPalette();
  return QWidget::event(event);
}

void CompanionWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Escape) return QWidget::keyPressEvent(event);
  close();
}

}  // namespace linewatch::desktop
