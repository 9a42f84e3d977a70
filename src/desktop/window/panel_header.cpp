#include "desktop/window/panel_header.h"

#include <QBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionToolButton>
#include <QTextLayout>
#include <QToolButton>
#include <algorithm>
#include <cmath>
#include <utility>

#include "desktop/drawing/typefaces.h"
#include "desktop/window/action_button.h"
#include "desktop/window/enter_key.h"
#include "desktop/window/focus_ring.h"
#include "desktop/window/plain_tool_tip.h"
#include "desktop/window/widget_role.h"
#include "desktop/window/window_colors.h"

namespace linewatch::desktop {

namespace {

// Points.
constexpr int kHeaderHeight = 40;
constexpr int kHeaderLeftInset = 16;
constexpr int kHeaderRightInset = 10;
constexpr double kTitleSize = 13;
constexpr double kNoteSize = 11;
// The largest scale of the header; the rows need the room more.
constexpr double kMostHeaderScale = 2.2;
// If a label has no room for this many letters, it shows nothing.
constexpr int kFewLetters = 6;
constexpr int kMostNoteLines = 2;
constexpr int kNewsSpacing = 8;
constexpr int kNewsBottomInset = 8;
// The largest width of the button as a part of the header. A wider button is placed below the news.
constexpr double kMostButtonWidth = 0.4;

double headerScale(ui::TextSizeCategory textSize) {
  return std::clamp(ui::scaleFactor(ui::TextStyle::body, textSize), 1.0, kMostHeaderScale);
}

/// A label of plain text that may be narrower than its text. The text then wraps, ends in an ellipsis, or
/// disappears if there is room for a few letters only.
class ElidingLabel final : public QLabel {
 public:
  explicit ElidingLabel(int mostLines = 1) : mostLines_(mostLines) { setTextFormat(Qt::PlainText); }

  QSize minimumSizeHint() const override { return {0, QLabel::minimumSizeHint().height()}; }

 protected:
  void paintEvent(QPaintEvent*) override {
    const bool fits = fontMetrics().horizontalAdvance(text()) <= width();
    if (!fits && width() < kFewLetters * fontMetrics().averageCharWidth()) return;
    QPainter painter(this);
    style()->drawItemText(&painter, rect(), static_cast<int>(Qt::AlignLeading | Qt::AlignVCenter), palette(),
                          isEnabled(), linesIn(width()).join(QLatin1Char('\n')), foregroundRole());
  }

 private:
  /// The lines of the text at this width. The last one is elided.
  QStringList linesIn(int width) const {
    QTextLayout layout(text(), font());
    QStringList lines;
    int start = 0;
    layout.beginLayout();
    while (lines.size() + 1 < mostLines_) {
      QTextLine line = layout.createLine();
      if (!line.isValid()) break;
      line.setLineWidth(width);
      lines << text().mid(start, line.textLength()).trimmed();
      start += line.textLength();
    }
    layout.endLayout();
    if (start < text().size()) lines << fontMetrics().elidedText(text().mid(start), Qt::ElideRight, width);
    return lines;
  }

  int mostLines_;
};

/// A menu button without the arrow: the three dots of its text already mean a menu.
class ArrowlessMenuButton final : public RingedButton<QToolButton> {
 protected:
  void initStyleOption(QStyleOptionToolButton* option) const override {
    QToolButton::initStyleOption(option);
    option->features &= ~QStyleOptionToolButton::HasMenu;
  }
};

}  // namespace

PanelHeader::PanelHeader(const WindowTexts& texts, Actions actions)
    : title_(new ElidingLabel),
      note_(new ElidingLabel(kMostNoteLines)),
      toggle_(new RingedButton<QToolButton>),
      menuButton_(new ArrowlessMenuButton),
      news_(new QLabel),
      remedyTexts_{texts("TryAgain"), texts("AddCity")},
      remedyButton_(new ActionButton(remedyTexts_[0], qtFont(kNoteSize, QFont::Medium))) {
  title_->setText(texts("Title"));
  connect(toggle_, &QToolButton::clicked, this, std::move(actions.toggle));
  connect(remedyButton_, &QAbstractButton::clicked, this,
          [this, tryAgain = std::move(actions.tryAgain), addCity = std::move(actions.addCity)] {
            remedy_ == Remedy::addCity ? addCity() : tryAgain();
          });
  setAccessibleRole(*toggle_, QAccessible::Button);
  menuButton_->setText(QStringLiteral("⋯"));
  menuButton_->setPopupMode(QToolButton::InstantPopup);
  menuButton_->setAccessibleName(texts("Menu"));
  setPlainToolTip(*menuButton_, texts("Menu"));
  menuButton_->setAccessibleDescription({});
  setAccessibleRole(*menuButton_, QAccessible::ButtonMenu);
  for (QToolButton* const button : {toggle_, menuButton_}) {
    button->setFocusPolicy(Qt::StrongFocus);
    clickOnEnter(*button);
  }
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(kHeaderLeftInset, 0, kHeaderRightInset, 0);
  layout->setSpacing(0);
  layout->addWidget(topRow_ = makeTopRow());
  layout->addWidget(newsRow_ = makeNewsRow());
}

QWidget* PanelHeader::makeTopRow() {
  note_->setObjectName(QStringLiteral("note"));
  setAccessibleRole(*note_, QAccessible::StaticText);
  note_->setForegroundRole(kFaintRole);
  note_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  toggle_->hide();
  for (QToolButton* const button : {toggle_, menuButton_}) button->setAutoRaise(true);
  auto* const row = new QWidget;
  auto* const layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(title_);
  layout->addWidget(note_, 1);
  layout->addWidget(toggle_);
  layout->addWidget(menuButton_);
  return row;
}

QWidget* PanelHeader::makeNewsRow() {
  news_->setObjectName(QStringLiteral("news"));
  news_->setTextFormat(Qt::PlainText);
  news_->setWordWrap(true);
  remedyButton_->setObjectName(QStringLiteral("tryAgain"));
  auto* const row = new QWidget;
  newsLayout_ = new QBoxLayout(QBoxLayout::LeftToRight, row);
  newsLayout_->setContentsMargins(0, 0, 0, kNewsBottomInset);
  newsLayout_->setSpacing(kNewsSpacing);
  newsLayout_->addWidget(news_, 1);
  newsLayout_->addWidget(remedyButton_);
  row->hide();
  return row;
}

void PanelHeader::setTextSize(ui::TextSizeCategory textSize) {
  const double scale = headerScale(textSize);
  title_->setFont(qtFont(kTitleSize * scale, QFont::DemiBold));
  note_->setFont(qtFont(kNoteSize * scale, QFont::Normal));
  toggle_->setFont(qtFont(kTitleSize * scale, QFont::Medium));
  menuButton_->setFont(qtFont(kTitleSize * scale, QFont::DemiBold));
  news_->setFont(qtFont(kNoteSize * scale, QFont::Normal));
  remedyButton_->setFont(qtFont(kNoteSize * scale, QFont::Medium));
  topRow_->setFixedHeight(static_cast<int>(std::lround(kHeaderHeight * scale)));
}

void PanelHeader::fitTo(int width) {
  const int room = width - kHeaderLeftInset - kHeaderRightInset;
  const QSize button = remedyButton_->sizeHint();
  const bool isBeside = button.width() <= kMostButtonWidth * room;
  newsLayout_->setDirection(isBeside ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
  newsLayout_->setAlignment(remedyButton_, isBeside ? Qt::AlignVCenter : Qt::AlignLeading);
  const int textHeight = news_->heightForWidth(isBeside ? room - button.width() - kNewsSpacing : room);
  const int newsHeight =
      isBeside ? std::max(textHeight, button.height()) : textHeight + kNewsSpacing + button.height();
  newsRow_->setFixedHeight(newsHeight + kNewsBottomInset);
  setFixedHeight(topRow_->height() + (newsRow_->isHidden() ? 0 : newsRow_->height()));
}

void PanelHeader::setTitleVisible(bool isVisible) { title_->setVisible(isVisible); }

void PanelHeader::setMenu(QMenu* menu) { menuButton_->setMenu(menu); }

QMenu* PanelHeader::menu() const { return menuButton_->menu(); }

void PanelHeader::popUpMenu() {
  if (menu()->isVisible()) return;
  const int x = isRightToLeft() ? 0 : menuButton_->width() - menu()->sizeHint().width();
  menu()->popup(menuButton_->mapToGlobal(QPoint(x, menuButton_->height())));
}

void PanelHeader::setNote(const Note& note) {
  const QString& whole = note.details.isEmpty() ? note.text : note.details;
  note_->setText(note.text);
  note_->setAccessibleName(whole);
  setPlainToolTip(*note_, whole);
  note_->setAccessibleDescription({});
}

void PanelHeader::setNews(const QString& text, const QString& details, Remedy remedy) {
  remedy_ = remedy;
  remedyButton_->setText(remedyTexts_[static_cast<int>(remedy)]);
  remedyButton_->updateGeometry();
  using enum ActionButton::Emphasis;
  remedyButton_->setEmphasis(remedy == Remedy::addCity ? primary : plain);
  if (news_->text() != text) news_->setText(text);
  if (news_->accessibleDescription() != details) setPlainToolTip(*news_, details);
  newsRow_->setVisible(!text.isEmpty());
}

bool PanelHeader::hasNews() const { return !newsRow_->isHidden(); }

QString PanelHeader::news() const { return news_->text(); }

void PanelHeader::setToggle(const QString& text, bool isExpanded, bool isVisible) {
  toggle_->setText(text);
  setAccessibleExpanded(*toggle_, isExpanded);
  toggle_->setVisible(isVisible);
}

bool PanelHeader::toggleHasFocus() const { return toggle_->hasFocus(); }
bool PanelHeader::remedyHasFocus() const { return remedyButton_->hasFocus(); }

}  // namespace linewatch::desktop
