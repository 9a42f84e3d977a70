#include "desktop/window/panel_header.h"

#include <QBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionToolButton>
#include <QToolButton>
#include <algorithm>
#include <cmath>
#include <utility>

#include "desktop/drawing/typefaces.h"
#include "desktop/window/enter_key.h"
#include "desktop/window/plain_tool_tip.h"
#include "desktop/window/window_colors.h"

namespace linewatch::desktop {

namespace {

// Points.
constexpr int kHeaderHeight = 40;
constexpr int kHeaderLeftInset = 16;
constexpr int kHeaderRightInset = 10;
constexpr double kTitleSize = 13;
constexpr double kNoteSize = 11;
// The header grows at most this much with the text size, because the rows need the room more.
constexpr double kMostHeaderScale = 1.6;
// A label with room for fewer letters than this shows nothing.
constexpr int kFewLetters = 6;

double headerScale(ui::TextSizeCategory textSize) {
  return std::clamp(ui::scaleFactor(ui::TextStyle::body, textSize), 1.0, kMostHeaderScale);
}

/// A label of plain text that may become narrower than its text. The text then ends in an ellipsis; with room
/// for only a few letters it is left out.
class ElidingLabel final : public QLabel {
 public:
  ElidingLabel() { setTextFormat(Qt::PlainText); }

  QSize minimumSizeHint() const override { return {0, QLabel::minimumSizeHint().height()}; }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, width());
    if (shown != text() && width() < kFewLetters * fontMetrics().averageCharWidth()) shown.clear();
    style()->drawItemText(&painter, rect(), static_cast<int>(Qt::AlignLeading | Qt::AlignVCenter), palette(),
                          isEnabled(), shown, foregroundRole());
  }
};

/// A button with a menu but without the menu arrow: its text, three dots, already means a menu.
class ArrowlessMenuButton final : public QToolButton {
 protected:
  void initStyleOption(QStyleOptionToolButton* option) const override {
    QToolButton::initStyleOption(option);
    option->features &= ~QStyleOptionToolButton::HasMenu;
  }
};

}  // namespace

PanelHeader::PanelHeader(const WindowTexts& texts, std::function<void()> toggled)
    : title_(new ElidingLabel),
      note_(new ElidingLabel),
      toggle_(new QToolButton),
      menuButton_(new ArrowlessMenuButton) {
  title_->setText(texts("Title"));
  note_->setForegroundRole(kFaintRole);
  note_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  toggle_->hide();
  connect(toggle_, &QToolButton::clicked, this, std::move(toggled));
  menuButton_->setText(QStringLiteral("⋯"));
  menuButton_->setPopupMode(QToolButton::InstantPopup);
  menuButton_->setAccessibleName(texts("Menu"));
  setPlainToolTip(*menuButton_, texts("Menu"));
  for (QToolButton* const button : {toggle_, menuButton_}) {
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::StrongFocus);
    clickOnEnter(*button);
  }
  auto* const layout = new QHBoxLayout(this);
  layout->setContentsMargins(kHeaderLeftInset, 0, kHeaderRightInset, 0);
  layout->addWidget(title_);
  layout->addWidget(note_, 1);
  layout->addWidget(toggle_);
  layout->addWidget(menuButton_);
}

int PanelHeader::heightAt(ui::TextSizeCategory textSize) {
  return static_cast<int>(std::lround(kHeaderHeight * headerScale(textSize)));
}

void PanelHeader::setTextSize(ui::TextSizeCategory textSize) {
  const double scale = headerScale(textSize);
  title_->setFont(qtFont(kTitleSize * scale, QFont::DemiBold));
  note_->setFont(qtFont(kNoteSize * scale, QFont::Normal));
  toggle_->setFont(qtFont(kTitleSize * scale, QFont::Medium));
  menuButton_->setFont(qtFont(kTitleSize * scale, QFont::DemiBold));
  setFixedHeight(heightAt(textSize));
}

void PanelHeader::setMenu(QMenu* menu) { menuButton_->setMenu(menu); }

QMenu* PanelHeader::menu() const { return menuButton_->menu(); }

void PanelHeader::setNote(const QString& note, const QString& toolTip, const QString& reason) {
  note_->setText(note);
  setPlainToolTip(*note_, toolTip);
  note_->setAccessibleDescription(reason);
}

void PanelHeader::setToggle(const QString& text, bool isVisible) {
  toggle_->setText(text);
  toggle_->setVisible(isVisible);
}

bool PanelHeader::toggleHasFocus() const { return toggle_->hasFocus(); }

}  // namespace linewatch::desktop
