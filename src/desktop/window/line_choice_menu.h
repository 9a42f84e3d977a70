#pragma once

#include <QMenu>
#include <functional>

#include "desktop/window/window_texts.h"
#include "platform/line_choice.h"

class QActionGroup;

namespace linewatch::desktop {

/// The choice in a few words, e.g. "No notices of stops · Direction 1 only". Empty for the default choice,
/// which is everything.
QString choiceInWords(const LineChoice& choice, const WindowTexts& texts);

/// A menu that chooses which incidents of a favourite line are shown: notices of all stops or of none, both
/// directions or one. Single stops are chosen on the command line; the menu keeps them or replaces them by
/// all or none. Main thread.
class LineChoiceMenu final : public QMenu {
 public:
  using Chosen = std::function<void(const LineChoice&)>;

  /// `chosen` is called with the new choice.
  LineChoiceMenu(const LineChoice& choice, const WindowTexts& texts, Chosen chosen, QWidget* parent);

 private:
  /// Adds an entry that has the group's mark if the choice is the present one.
  void add(const QString& text, const LineChoice& choice, QActionGroup& group);

  LineChoice present_;
  Chosen chosen_;
};

}  // namespace linewatch::desktop
