#pragma once

#include <QWidget>
#include <functional>

#include "desktop/window/window_texts.h"

namespace linewatch::desktop {

/// What the panel shows at its first start: what LineWatch is, and the two ways to begin. Main thread.
class WelcomeCard final : public QWidget {
 public:
  struct Actions {
    std::function<void()> chooseCity;
    std::function<void()> showExample;
  };

  WelcomeCard(const WindowTexts& texts, Actions actions);
};

}  // namespace linewatch::desktop
