#include "desktop/window/favorites_window.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <utility>

#include "desktop/window/action_button.h"

namespace linewatch::desktop {

namespace {

// Points.
constexpr QSize kFavoritesSize(440, 600);

}  // namespace

FavoritesWindow::FavoritesWindow(SharedWindowTexts texts, FavoritesServices services)
    : CompanionWindow(texts),
      services_(services),
      exampleNote_(makeExampleNote()),
      pane_(new FavoritesPane(std::move(texts), std::move(services), artworkCache())) {
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, kWindowMargin, 0, 0);
  layout->addWidget(exampleNote_);
  layout->addWidget(pane_);
  pane_->setChangeHandler([this] { showTitle(); });
  resizeWithText(*this, kFavoritesSize);
}

QWidget* FavoritesWindow::makeExampleNote() {
  auto* const note = new QWidget;
  auto* const layout = new QHBoxLayout(note);
  layout->setContentsMargins(kWindowMargin, 0, kWindowMargin - kButtonRing, 0);
  layout->addWidget(makeLabel(texts()("ExampleLines"), font(kWindowTextSize)), 1);
  auto* const choose = new ActionButton(texts()("ChooseYourCity"), ActionButton::Emphasis::primary);
  connect(choose, &QAbstractButton::clicked, this, [this] { services_.chooseCity(); });
  layout->addWidget(choose);
  note->hide();
  return note;
}

void FavoritesWindow::showTitle() {
  exampleNote_->setVisible(services_.isExample && services_.isExample());
  setWindowTitle(texts()(pane_->hasNoFavorites() ? "AddFavoritesTitle" : "FavoritesTitle"));
}

void FavoritesWindow::present() {
  pane_->present();
  showInFront();
  pane_->setFocus(Qt::OtherFocusReason);
}

void FavoritesWindow::restore(const State& state) {
  setPlace(state.place);
  present();
  pane_->restore(state.view);
}

/// Esc clears a search before it closes the window.
void FavoritesWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape && pane_->clearSearch()) return;
  CompanionWindow::keyPressEvent(event);
}

}  // namespace linewatch::desktop
