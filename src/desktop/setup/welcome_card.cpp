#include "desktop/setup/welcome_card.h"

#include <QBoxLayout>
#include <QLabel>
#include <utility>

#include "desktop/window/action_button.h"
#include "desktop/window/window_style.h"

namespace linewatch::desktop {

namespace {

// Points.
constexpr int kCardInset = 16;
constexpr int kCardBottomInset = 13;
constexpr int kCardGap = 6;
constexpr int kButtonsGap = 14;
constexpr double kCardTitleSize = 17;
constexpr double kCardTextSize = 13;

}  // namespace

WelcomeCard::WelcomeCard(const WindowTexts& texts, Actions actions) {
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(kCardInset, kCardGap, kCardInset, kCardBottomInset);
  layout->setSpacing(kCardGap);
  layout->addWidget(plainLabel(texts("WelcomeTitle"), windowFont(kCardTitleSize, QFont::DemiBold)));
  layout->addWidget(plainLabel(texts("WelcomeText"), windowFont(kCardTextSize)));
  layout->addWidget(plainLabel(texts("ExampleNote"), windowFont(kCardTextSize), TextTone::faint));
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
