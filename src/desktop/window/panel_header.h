#pragma once

#include <QString>
#include <QWidget>
#include <cstdint>
#include <functional>

#include "desktop/window/window_texts.h"
#include "ui/text_style.h"

class QBoxLayout;
class QLabel;
class QMenu;
class QToolButton;

namespace linewatch::desktop {

class ActionButton;

/// The panel's header: a title, a note about the data, a button for more or fewer rows, and a menu button.
/// When something is wrong, a second row has the news and a button that may help. Main thread.
class PanelHeader final : public QWidget {
 public:
  struct Actions {
    /// The user asks for more or fewer rows.
    std::function<void()> toggle;
    /// The user asks for another update.
    std::function<void()> tryAgain;
    /// The user asks to add a city; see `setNews`.
    std::function<void()> addCity;
  };

  /// A note about the data, and a longer text that also says what the note leaves out.
  struct Note {
    QString text;
    /// Empty when the note says everything.
    QString details = {};
  };

  /// What the button beside the news does.
  enum class Remedy : std::uint8_t { tryAgain, addCity };

  PanelHeader(const WindowTexts& texts, Actions actions);

  /// The header's texts grow less than the rows.
  void setTextSize(ui::TextSizeCategory textSize);
  /// Sets the height that the header needs at this width, in points. To be called after the width, the text
  /// size or the news have changed.
  void fitTo(int width);

  /// Under a title bar the header does not repeat the title.
  void setTitleVisible(bool isVisible);
  void setMenu(QMenu* menu);
  QMenu* menu() const;
  /// Opens the menu at its button, unless it is open.
  void popUpMenu();

  /// The note may be cut short, so its tooltip has the details or the whole text, as does its accessible
  /// name.
  void setNote(const Note& note);

  /// `details`: plain text for the tooltip and for assistive technology. An empty text removes the news.
  void setNews(const QString& text, const QString& details, Remedy remedy = Remedy::tryAgain);
  bool hasNews() const;
  QString news() const;

  void setToggle(const QString& text, bool isExpanded, bool isVisible);
  bool toggleHasFocus() const;
  bool remedyHasFocus() const;

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
  Remedy remedy_ = Remedy::tryAgain;
  /// The texts of the button, by remedy.
  QString remedyTexts_[2];
  ActionButton* remedyButton_;
};

}  // namespace linewatch::desktop
