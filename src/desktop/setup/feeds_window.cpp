#include "desktop/setup/feeds_window.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QScrollArea>
#include <algorithm>
#include <utility>

#include "desktop/setup/feed_row.h"
#include "desktop/window/action_button.h"
#include "desktop/window/window_colors.h"
#include "shared/failure.h"

namespace linewatch::desktop {

namespace {

// Points.
constexpr QSize kFeedsSize(460, 420);

}  // namespace

FeedsWindow::FeedsWindow(SharedWindowTexts texts, SetupServices services, std::function<void()> addCity)
    : CompanionWindow(std::move(texts)),
      services_(std::move(services)),
      note_(makeLabel({}, font(kWindowTextSize), Tone::faint)) {
  setWindowTitle(this->texts()("FeedsTitle"));
  auto* const add = new ActionButton(this->texts()("AddCity"), ActionButton::Emphasis::primary);
  connect(add, &QAbstractButton::clicked, this, std::move(addCity));
  auto* const top = new QHBoxLayout;
  top->setContentsMargins(kWindowMargin, kWindowMargin, kWindowMargin - kButtonRing, 0);
  top->addWidget(makeLabel(this->texts()("FeedsTitle"), font(kWindowTitleSize, QFont::DemiBold)), 1);
  top->addWidget(add);
  note_->setContentsMargins(kWindowMargin, 0, kWindowMargin, 0);
  auto* const content = new QWidget;
  auto* const column = new QVBoxLayout(content);
  column->setContentsMargins(0, 0, 0, 0);
  list_ = new QVBoxLayout;
  list_->setSpacing(0);
  column->addLayout(list_);
  column->addStretch();
  auto* const scroller = new QScrollArea;
  scroller->setFrameShape(QFrame::NoFrame);
  scroller->setWidgetResizable(true);
  scroller->setFocusPolicy(Qt::NoFocus);
  scroller->setWidget(content);
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(kWindowMargin / 2);
  layout->addLayout(top);
  layout->addWidget(note_);
  layout->addWidget(scroller, 1);
  resizeWithText(*this, kFeedsSize);
}

FeedsWindow::~FeedsWindow() { carryOutAll(); }

void FeedsWindow::present() {
  states_ = services_.states();
  followChanges();
  showInFront();
  check();
}

void FeedsWindow::followChanges() {
  auto feeds = services_.feeds();
  if (!feeds) return showNote(QString::fromStdString(texts().reason(feeds.error())), Tone::alarming);
  if (*feeds == feeds_ && !feeds_.empty()) return showStates();
  feeds_ = std::move(*feeds);
  showFeeds();
}

void FeedsWindow::check() {
  if (std::exchange(isChecking_, true)) return;
  services_.check([window = QPointer<FeedsWindow>(this)](const std::vector<FeedState>& states) {
    if (!window) return;
    window->isChecking_ = false;
    window->states_ = states;
    window->showStates();
  });
}

// ---- The list ----

void FeedsWindow::showFeeds() {
  for (const auto& [name, row] : std::exchange(rows_, {})) row->deleteLater();
  showNote(feeds_.empty() ? texts()("NoFeeds") : QString());
  for (const StoredFeed& feed : feeds_) {
    rows_[feed.name] = makeRow(feed);
    list_->addWidget(rows_[feed.name]);
    rows_[feed.name]->showRemoved(removals_.contains(feed.name));
  }
  showStates();
}

FeedRow* FeedsWindow::makeRow(const StoredFeed& feed) {
  const std::string name = feed.name;
  return new FeedRow(sharedTexts(), feed,
                     {.tryAgain =
                          [this, name] {
                            std::erase_if(states_,
                                          [&](const FeedState& state) { return state.feed == name; });
                            showStates();
                            check();
                          },
                      .changeKey = [this, feed](const std::string& key) { changeKey(feed, key); },
                      .remove = [this, name] { remove(name); },
                      .undo = [this, name] { undo(name); }});
}

void FeedsWindow::showStates() {
  for (const auto& [name, row] : rows_) {
    const auto state = std::ranges::find(states_, name, &FeedState::feed);
    row->showState(state == states_.end() ? std::nullopt : std::optional(*state), services_.now());
  }
}

void FeedsWindow::showNote(const QString& note, TextTone tone) {
  note_->setText(note);
  note_->setForegroundRole(tone == Tone::alarming ? kAlarmRole : kFaintRole);
  note_->setVisible(!note.isEmpty());
}

// ---- Changes ----

/// The key replaces the present one in both documents, and any command that prints it.
void FeedsWindow::changeKey(StoredFeed feed, const std::string& key) {
  for (FeedSource* const source : {&feed.gtfs, &feed.alerts}) {
    if (source->keys.isEmpty()) continue;
    source->keys.key = key;
    source->keys.command.clear();
  }
  if (const auto error = services_.changeFeed(feed))
    return showNote(QString::fromStdString(texts().reason(*error)), Tone::alarming);
  std::erase_if(states_, [&](const FeedState& state) { return state.feed == feed.name; });
  services_.feedsDidChange();
  followChanges();
  check();
}

void FeedsWindow::remove(const std::string& name) {
  auto timer = std::make_unique<QTimer>();
  timer->setSingleShot(true);
  connect(timer.get(), &QTimer::timeout, this, [this, name] { carryOut(name); });
  timer->start(undoTime_);
  removals_[name] = std::move(timer);
  rows_.at(name)->showRemoved(true);
}

void FeedsWindow::undo(const std::string& name) {
  removals_.erase(name);
  rows_.at(name)->showRemoved(false);
}

void FeedsWindow::carryOut(const std::string& name) {
  // The timer that may have called this ends later.
  if (const auto removal = removals_.find(name); removal != removals_.end()) {
    removal->second.release()->deleteLater();
    removals_.erase(removal);
  }
  const auto error = services_.removeFeed(name);
  followChanges();
  if (!error) return services_.feedsDidChange();
  if (const auto row = rows_.find(name); row != rows_.end()) row->second->showRemoved(false);
  showNote(QString::fromStdString(texts().reason(*error)), Tone::alarming);
}

void FeedsWindow::carryOutAll() {
  while (!removals_.empty()) carryOut(std::string(removals_.begin()->first));
}

void FeedsWindow::closeEvent(QCloseEvent* event) {
  carryOutAll();
  CompanionWindow::closeEvent(event);
}

}  // namespace linewatch::desktop
