#include "desktop/window/favorites_window.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <utility>

namespace linewatch::desktop {

namespace {

// Points.
constexpr int kFavoritesWidth = 440;
constexpr int kFavoritesHeight = 600;
constexpr int kFavoritesMargin = 16;

}  // namespace

FavoritesWindow::FavoritesWindow(SharedWindowTexts texts, FavoritesServices services)
    : CompanionWindow(texts),
      pane_(new FavoritesPane(std::move(texts), std::move(services), artworkCache())) {
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, kFavoritesMargin, 0, 0);
  layout->addWidget(pane_);
  pane_->setChangeHandler([this] { showTitle(); });
  resize(kFavoritesWidth, kFavoritesHeight);
}

void FavoritesWindow::showTitle() {
  setWindowTitle(texts()(pane_->hasNoFavorites() ? "AddFavoritesTitle" : "FavoritesTitle"));
}

void FavoritesWindow::present() {
  pane_->present();
  showInFront();
  pane_->setFocus(Qt::OtherFocusReason);
}

/// Esc clears a search before it closes the window.
void FavoritesWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape && pane_->clearSearch()) return;
  CompanionWindow::keyPressEvent(event);
}

}  // namespace linewatch::desktop
