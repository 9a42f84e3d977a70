#pragma once

#include <QWidget>
#include <functional>

#include "desktop/window/window_texts.h"
#include "ui/text_style.h"

class QLabel;
class QMenu;
class QToolButton;

namespace linewatch::desktop {

/// The panel's header: its title, a note on the data, a button that shows more or fewer rows, and a button
/// that opens the menu. Main thread.
class PanelHeader final : public QWidget {
 public:
  /// `toggled` is called when the user asks for more or fewer rows.
  PanelHeader(const WindowTexts& texts, std::function<void()> toggled);

  /// The header's height in points. It grows with the text, but less than the rows do.
  static int heightAt(ui::TextSizeCategory textSize);
  void setTextSize(ui::TextSizeCategory textSize);

  void setMenu(QMenu* menu);
  QMenu* menu() const;

  /// `toolTip`: plain text, shown when the mouse rests on the note. `reason`: the same for assistive
  /// technology; empty when the last update succeeded.
  void setNote(const QString& note, const QString& toolTip, const QString& reason);

  void setToggle(const QString& text, bool isVisible);
  bool toggleHasFocus() const;

 private:
  QLabel* title_;
  QLabel* note_;
  QToolButton* toggle_;
  QToolButton* menuButton_;
};

}  // namespace linewatch::desktop
