#pragma once

#include <QWidget>
#include <functional>

#include "desktop/window/window_texts.h"
#include "ui/text_style.h"

class QBoxLayout;
class QLabel;
class QMenu;
class QPushButton;
class QToolButton;

namespace linewatch::desktop {

/// The panel's header: its title, a note on the data, a button that shows more or fewer rows, and a button
/// that opens the menu. Below them, when something is wrong, the news of it and a button that tries again.
/// Main thread.
class PanelHeader final : public QWidget {
 public:
  struct Actions {
    /// The user asks for more or fewer rows.
    std::function<void()> toggle;
    /// The user asks for another update, because of the news.
    std::function<void()> tryAgain;
  };

  PanelHeader(const WindowTexts& texts, Actions actions);

  /// The texts grow with the text size, but less than the rows do.
  void setTextSize(ui::TextSizeCategory textSize);
  /// Gives the header the height that it needs at this width, in points. To be called after its width, text
  /// size or news have changed.
  void fitTo(int width);

  void setMenu(QMenu* menu);
  QMenu* menu() const;

  /// The tool tip repeats the note, which may be cut short.
  void setNote(const QString& note);

  /// `details`: plain text, shown as a tool tip and told by assistive technology. An empty text removes the
  /// news.
  void setNews(const QString& text, const QString& details);
  bool hasNews() const;

  void setToggle(const QString& text, bool isVisible);
  bool toggleHasFocus() const;
  bool tryAgainHasFocus() const;

 private:
  QWidget* makeTopRow();
  QWidget* makeNewsRow();

  QWidget* topRow_ = nullptr;
  QWidget* newsRow_ = nullptr;
  QBoxLayout* newsLayout_ = nullptr;
  QLabel* title_;
  QLabel* note_;
  QToolButton* toggle_;
  QToolButton* menuButton_;
  QLabel* news_;
  QPushButton* tryAgain_;
};

}  // namespace linewatch::desktop
