#include "desktop/setup/welcome_card.h"

#include <QBoxLayout>
#include <QLabel>
#include <utility>

#include "desktop/window/action_button.h"
#include "desktop/window/window_style.h"

namespace linewatch::desktop {

namespace {

// Points.
constexpr int kCardBottomInset = 13;
constexpr int kButtonsGap = 14;

}  // namespace

WelcomeCard::WelcomeCard(const WindowTexts& texts, Actions actions) {
  auto* const layout = new QVBoxLayout(this);
  // The buttons' bodies are in line with the texts.
  constexpr int kSide = kWindowMargin - kButtonRing;
  layout->setContentsMargins(kSide, kWindowGap, kSide, kCardBottomInset);
  layout->setSpacing(kWindowGap);
  layout->addWidget(plainLabel(texts("WelcomeTitle"), windowFont(kWindowTitleSize, QFont::DemiBold)));
  layout->addWidget(plainLabel(texts("WelcomeText"), windowFont(kWindowTextSize)));
  layout->addWidget(plainLabel(texts("ExampleNote"), windowFont(kWindowTextSize), TextTone::faint));
  for (auto* const label : findChildren<QLabel*>()) label->setContentsMargins(kButtonRing, 0, kButtonRing, 0);
  layout->addSpacing(kButtonsGap);
  auto* const choose = new ActionButton(texts("ChooseYourCity"), ActionButton::Emphasis::primary);
  auto* const example = new ActionButton(texts("LookAtExample"));
  connect(choose, &QAbstractButton::clicked, this, std::move(actions.chooseCity));
  connect(example, &QAbstractButton::clicked, this, std::move(actions.showExample));
  buttons_ = new QBoxLayout(QBoxLayout::LeftToRight);
  buttons_->addWidget(choose, 0, Qt::AlignLeading);
  buttons_->addWidget(example, 0, Qt::AlignLeading);
  buttons_->addStretch();
  layout->addLayout(buttons_);
  setFocusProxy(choose);
}

void WelcomeCard::arrangeButtons(int width) const {
  int needed = 2 * kWindowMargin + buttons_->spacing();
  for (const auto* const button : findChildren<QAbstractButton*>()) needed += button->sizeHint().width();
  buttons_->setDirection(needed <= width ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
}

int WelcomeCard::heightForWidth(int width) const {
  arrangeButtons(width);
  return QWidget::heightForWidth(width);
}

void WelcomeCard::resizeEvent(QResizeEvent* event) {
  arrangeButtons(width());
  QWidget::resizeEvent(event);
}

}  // namespace linewatch::desktop
