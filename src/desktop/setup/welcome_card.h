#pragma once

#include <QWidget>
#include <functional>

#include "desktop/window/window_texts.h"

class QBoxLayout;

namespace linewatch::desktop {

/// What the panel shows at its first start: what LineWatch is, and the two ways to begin. Main thread.
class WelcomeCard final : public QWidget {
 public:
  struct Actions {
    std::function<void()> chooseCity;
    std::function<void()> showExample;
  };

  WelcomeCard(const WindowTexts& texts, Actions actions);

  int heightForWidth(int width) const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  /// The buttons are one above the other if they are too wide to stand side by side.
  void arrangeButtons(int width) const;

  QBoxLayout* buttons_;
};

}  // namespace linewatch::desktop
