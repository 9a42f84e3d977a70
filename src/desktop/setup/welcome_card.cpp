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
  layout->setContentsMargins(kWindowMargin, kWindowGap, kWindowMargin, kCardBottomInset);
  layout->setSpacing(kWindowGap);
  layout->addWidget(plainLabel(texts("WelcomeTitle"), windowFont(kWindowTitleSize, QFont::DemiBold)));
  layout->addWidget(plainLabel(texts("WelcomeText"), windowFont(kWindowTextSize)));
  layout->addWidget(plainLabel(texts("ExampleNote"), windowFont(kWindowTextSize), TextTone::faint));
  layout->addSpacing(kButtonsGap);
  auto* const choose = new ActionButton(texts("ChooseYourCity"), ActionButton::Emphasis::primary);
  auto* const example = new ActionButton(texts("LookAtExample"));
  connect(choose, &QAbstractButton::clicked, this, std::move(actions.chooseCity));
  connect(example, &QAbstractButton::clicked, this, std::move(actions.showExample));
  auto* const buttons = new QHBoxLayout;
  buttons->setContentsMargins(-kButtonRing, 0, -kButtonRing, 0);
  buttons->addWidget(choose);
  buttons->addWidget(example);
  buttons->addStretch();
  layout->addLayout(buttons);
  setFocusProxy(choose);
}

}  // namespace linewatch::desktop
