#include "desktop/setup/feed_row.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPainter>
#include <utility>

#include "desktop/window/action_button.h"
#include "desktop/window/outlined_field.h"
#include "desktop/window/panel_news.h"
#include "desktop/window/window_colors.h"
#include "desktop/window/window_style.h"
#include "shared/failure.h"

namespace linewatch::desktop {

namespace {

// Points.
constexpr int kFeedPadding = 12;

bool usesKey(const StoredFeed& feed) { return !feed.gtfs.keys.isEmpty() || !feed.alerts.keys.isEmpty(); }

}  // namespace

FeedRow::FeedRow(SharedWindowTexts texts, const StoredFeed& feed, Actions actions)
    : texts_(std::move(texts)),
      name_(QString::fromStdString(feed.name)),
      actions_(std::move(actions)),
      present_(makePresent(feed)),
      removed_(makeRemoved(feed.name)) {
  auto* const layout = new QVBoxLayout(this);
  constexpr int kSide = kWindowMargin - kButtonRing;
  layout->setContentsMargins(kSide, kFeedPadding, kSide, kFeedPadding);
  layout->addWidget(present_);
  layout->addWidget(removed_);
  removed_->hide();
}

ActionButton* FeedRow::makeButton(const char* text, std::function<void()> action) {
  auto* const button = new ActionButton((*texts_)(text));
  button->setAccessibleName((*texts_)(text) + QStringLiteral(" – ") + name_);
  connect(button, &QAbstractButton::clicked, this, std::move(action));
  return button;
}

QWidget* FeedRow::makePresent(const StoredFeed& feed) {
  auto* const part = new QWidget;
  auto* const layout = new QVBoxLayout(part);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(kWindowSmallGap);
  layout->addWidget(plainLabel(name_, windowFont(kWindowNameSize, QFont::Medium)));
  layout->addWidget(state_ = plainLabel({}, windowFont(kWindowNoteSize), TextTone::faint));
  // The buttons' bodies are in line with the texts.
  for (auto* const label : part->findChildren<QLabel*>())
    label->setContentsMargins(kButtonRing, 0, kButtonRing, 0);
  auto* const buttons = new QHBoxLayout;
  buttons->addWidget(makeButton("TryAgain", [this] { actions_.tryAgain(); }));
  if (usesKey(feed)) buttons->addWidget(changeKey_ = makeButton("ChangeKey", [this] { showKeyEntry(true); }));
  buttons->addWidget(makeButton("RemoveFeed", [this] { actions_.remove(); }));
  buttons->addStretch();
  layout->addLayout(buttons);
  layout->addWidget(keyEntry_ = makeKeyEntry());
  keyEntry_->hide();
  return part;
}

QWidget* FeedRow::makeKeyEntry() {
  auto* const part = new QWidget;
  auto* const layout = new QHBoxLayout(part);
  layout->setContentsMargins(kButtonRing, 0, 0, 0);
  key_ = new OutlinedField;
  key_->setFont(windowFont(kWindowNameSize));
  key_->setPlaceholderText((*texts_)("NewKey"));
  key_->setAccessibleName((*texts_)("NewKey"));
  auto* const save = makeButton("SaveKey", [this] {
    const std::string key = key_->text().trimmed().toStdString();
    if (key.empty()) return key_->setFocus(Qt::OtherFocusReason);
    showKeyEntry(false);
    actions_.changeKey(key);
  });
  connect(key_, &QLineEdit::returnPressed, save, &QAbstractButton::click);
  layout->addWidget(key_, 1);
  layout->addWidget(save);
  layout->addWidget(makeButton("Cancel", [this] { showKeyEntry(false); }));
  return part;
}

void FeedRow::showKeyEntry(bool isShown) {
  key_->clear();
  keyEntry_->setVisible(isShown);
  (isShown ? static_cast<QWidget*>(key_) : changeKey_)->setFocus(Qt::OtherFocusReason);
}

QWidget* FeedRow::makeRemoved(const std::string& name) {
  auto* const part = new QWidget;
  auto* const layout = new QHBoxLayout(part);
  layout->setContentsMargins(0, 0, -kButtonRing, 0);
  layout->addWidget(
      plainLabel((*texts_)("FeedRemoved", {name}), windowFont(kWindowNoteSize), TextTone::faint), 1);
  layout->addWidget(undo_ = makeButton("Undo", [this] { actions_.undo(); }));
  return part;
}

void FeedRow::showState(const std::optional<FeedState>& state, Date now) {
  const QString text = state ? feedStateInWords(*state, *texts_, now) : (*texts_)("Checking");
  state_->setText(text);
  const bool isAlarming = state && !state->knowsLines();
  state_->setForegroundRole(isAlarming ? kAlarmRole : kFaintRole);
}

void FeedRow::showRemoved(bool isRemoved) {
  const bool hadFocus = isAncestorOf(window()->focusWidget());
  present_->setVisible(!isRemoved);
  removed_->setVisible(isRemoved);
  if (hadFocus)
    (isRemoved ? static_cast<QWidget*>(undo_) : nextInFocusChain())->setFocus(Qt::OtherFocusReason);
}

/// A thin line above the feed.
void FeedRow::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(QRect(kWindowMargin, 0, width() - 2 * kWindowMargin, 1), palette().color(kOutlineRole));
}

}  // namespace linewatch::desktop
