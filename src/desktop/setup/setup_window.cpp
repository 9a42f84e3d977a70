#include "desktop/setup/setup_window.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QStackedWidget>
#include <utility>

#include "desktop/setup/lines_page.h"
#include "desktop/setup/search_page.h"
#include "desktop/window/action_button.h"
#include "desktop/window/widget_role.h"
#include "desktop/window/window_style.h"

namespace linewatch::desktop {

namespace {

// Points.
constexpr QSize kSetupSize(480, 620);
// The ring of the Back button is part of its own room.
constexpr int kSetupMargin = kWindowMargin - kButtonRing;

}  // namespace

SetupWindow::SetupWindow(SharedWindowTexts texts, SetupServices services, std::function<void()> finished)
    : CompanionWindow(std::move(texts)),
      services_(std::move(services)),
      finished_(std::move(finished)),
      title_(makeLabel({}, font(kWindowTitleSize, QFont::DemiBold))),
      back_(new ActionButton(QStringLiteral("‹ ") + this->texts()("Back"))),
      pages_(new QStackedWidget) {
  auto* const top = new QHBoxLayout;
  top->setContentsMargins(kSetupMargin, kSetupMargin, kSetupMargin, 0);
  top->setSpacing(kSetupMargin);
  top->addWidget(back_);
  top->addWidget(title_, 1);
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(kSetupMargin);
  layout->addLayout(top);
  layout->addWidget(pages_, 1);
  back_->setAccessibleName(this->texts()("Back"));
  setAccessibleRole(*pages_, QAccessible::Grouping);
  connect(back_, &QAbstractButton::clicked, this, [this] { goBack(); });
  resizeWithText(*this, kSetupSize);
}

void SetupWindow::findCity() {
  showSearch();
  showInFront();
  search_->setFocus(Qt::OtherFocusReason);
}

void SetupWindow::chooseLines() {
  showLines(std::nullopt);
  showInFront();
}

void SetupWindow::followChanges() {
  if (lines_) lines_->followChanges();
}

SetupWindow::State SetupWindow::state() const {
  State state{.place = place(), .search = search_ ? search_->search() : QString()};
  if (add_) {
    state.wanted = wanted_;
    state.entries = add_->entries();
    state.isAdding = add_->isAdding();
  }
  state.showsLines = lines_ != nullptr;
  if (lines_) state.added = added_;
  return state;
}

bool SetupWindow::isAdding() const { return add_ && add_->isAdding(); }

void SetupWindow::restore(const State& state) {
  setPlace(state.place);
  showSearch();
  search_->setSearch(state.search);
  if (state.showsLines) showLines(state.added);
  if (state.wanted) {
    showAdd(*state.wanted);
    add_->setEntries(state.entries);
  }
  showInFront();
  if (add_ && state.isAdding) add_->start();
}

// ---- The pages ----

void SetupWindow::show(QWidget* page, const QString& title) {
  title_->setText(title);
  pages_->setAccessibleName(title);
  setWindowTitle(title);
  if (pages_->indexOf(page) < 0) pages_->addWidget(page);
  pages_->setCurrentWidget(page);
  for (QWidget* const other : {static_cast<QWidget*>(add_), static_cast<QWidget*>(lines_)}) {
    if (!other || other == page) continue;
    pages_->removeWidget(other);
    other->deleteLater();
  }
  if (add_ != page) add_ = nullptr;
  if (lines_ != page) lines_ = nullptr;
}

void SetupWindow::showSearch() {
  if (!search_)
    search_ = new SearchPage(sharedTexts(), services_,
                             {.choose = [this](const CatalogueHit& hit) { showAdd(hit); },
                              .enterAddresses =
                                  [this](const std::string& timetable, const std::string& alerts) {
                                    showAdd(AddPage::Addresses{timetable, alerts});
                                  }});
  show(search_, texts()("ChooseCity"));
  search_->present();
  search_->setFocus(Qt::OtherFocusReason);
}

void SetupWindow::showAdd(const AddPage::Wanted& wanted) {
  auto* const page = new AddPage(sharedTexts(), services_, wanted, [this](const FeedFindings& added) {
    services_.feedsDidChange();
    showLines(added);
  });
  delete std::exchange(add_, page);
  wanted_ = wanted;
  show(page, texts()(std::holds_alternative<CatalogueHit>(wanted) ? "AddCityTitle" : "AddressesTitle"));
  page->present();
}

void SetupWindow::showLines(const std::optional<FeedFindings>& added) {
  auto* const page = new LinesPage(sharedTexts(), services_, artworkCache(), added, [this] { finish(); });
  delete std::exchange(lines_, page);
  added_ = added;
  show(page, texts()("ChooseLinesTitle"));
  page->present();
}

void SetupWindow::goBack() {
  if (pages_->currentWidget() != search_) return showSearch();
  finish();
}

void SetupWindow::finish() {
  close();
  finished_();
}

/// Ends an adding that still runs.
void SetupWindow::closeEvent(QCloseEvent* event) {
  if (add_) showSearch();
  CompanionWindow::closeEvent(event);
}

/// Esc clears a search, or goes back.
void SetupWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Escape) return CompanionWindow::keyPressEvent(event);
  const bool isCleared = lines_ ? lines_->clearSearch() : !add_ && search_ && search_->clearSearch();
  if (!isCleared) goBack();
}

}  // namespace linewatch::desktop
