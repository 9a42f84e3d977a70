#include "desktop/window/favorites_window.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "desktop/window/action_button.h"

namespace linewatch::desktop {

namespace {

// Points.
constexpr QSize kFavoritesSize(440, 600);

}  // namespace

FavoritesWindow::FavoritesWindow(SharedWindowTexts texts, FavoritesServices services)
    : CompanionWindow(texts),
      services_(services),
      cityNoteText_(makeLabel({}, font(kWindowTextSize))),
      chooseCity_(new ActionButton({}, ActionButton::Emphasis::primary)),
      cityNote_(makeCityNote()),
      pane_(new FavoritesPane(std::move(texts), std::move(services), artworkCache())) {
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, kWindowMargin, 0, 0);
  layout->addWidget(cityNote_);
  layout->addWidget(pane_);
  pane_->setChangeHandler([this] { showTitle(); });
  resizeWithText(*this, kFavoritesSize);
}

QWidget* FavoritesWindow::makeCityNote() {
  auto* const note = new QWidget;
  auto* const layout = new QHBoxLayout(note);
  layout->setContentsMargins(kWindowMargin, 0, kWindowMargin - kButtonRing, 0);
  layout->addWidget(cityNoteText_, 1);
  connect(chooseCity_, &QAbstractButton::clicked, this, [this] { services_.chooseCity(); });
  layout->addWidget(chooseCity_);
  note->hide();
  return note;
}

void FavoritesWindow::showCityNote() {
  const bool isExample = services_.isExample && services_.isExample();
  const auto removed = services_.removedFeeds ? services_.removedFeeds() : std::vector<std::string>();
  cityNote_->setVisible(isExample || !removed.empty());
  if (isExample) {
    cityNoteText_->setText(texts()("ExampleLines"));
    chooseCity_->setText(texts()("ChooseYourCity"));
  } else if (!removed.empty()) {
    const std::vector<std::string_view> names(removed.begin(), removed.end());
    cityNoteText_->setText(texts()("FeedsRemoved", {std::uint64_t{names.size()}, texts().joined(names)}));
    chooseCity_->setText(texts()("AddCity"));
  }
}

void FavoritesWindow::showTitle() {
  showCityNote();
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
