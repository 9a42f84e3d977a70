#include "desktop/window/companion_window.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <utility>

#include "desktop/window/widget_role.h"
#include "desktop/window/window_colors.h"
#include "presentation/memory_constrained_artwork_cache.h"

namespace linewatch::desktop {

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

QFont CompanionWindow::font(double points, QFont::Weight weight) const { return windowFont(points, weight); }

QLabel* CompanionWindow::makeLabel(const QString& text, const QFont& font, Tone tone) const {
  return plainLabel(text, font, tone);
}

std::int64_t CompanionWindow::artworkStep(std::int64_t usual) const { return windowArtworkStep(usual); }

void CompanionWindow::takeOverFrom(const CompanionWindow& open) {
  // It widens with larger text.
  setPlace({open.pos(), size().expandedTo(open.size())});
  setAttribute(Qt::WA_ShowWithoutActivating, !open.isActiveWindow());
}

void CompanionWindow::showInFront() {
  show();
  if (testAttribute(Qt::WA_ShowWithoutActivating)) return setAttribute(Qt::WA_ShowWithoutActivating, false);
  raise();
  activateWindow();
}

void CompanionWindow::setPlace(const WindowPlace& place) {
  resize(place.size);
  move(place.corner);
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
