#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "desktop/window/companion_window.h"
#include "settings/setting_table.h"
#include "settings/user_settings.h"
#include "shared/error.h"

class QBoxLayout;
class QComboBox;
class QLineEdit;
class QScrollArea;

namespace linewatch::desktop {

/// Functions of the program that the settings window calls.
struct SettingsServices {
  std::function<SettingValue(const Setting&)> find;
  /// Changes a setting, at once and in the file. An empty function: the settings cannot be changed.
  std::function<std::optional<Error>(const Setting&, const std::string& text)> set = {};
  /// The mistakes in the file, a line for each.
  std::function<std::vector<std::string>()> faults;
  /// The path of the file; empty in a run without one.
  std::string file;
};

/// The settings, with a control for each row of their table. A change takes effect at once. Main thread.
class SettingsWindow final : public CompanionWindow {
 public:
  SettingsWindow(SharedWindowTexts texts, SettingsServices services);

  /// Shows the window in front, with the present values.
  void present();
  /// Where the window is and what it shows, for a window in another language.
  struct State {
    WindowPlace place;
    /// Points from the start of the window's content.
    int scrolledTo = 0;
    /// The key of the setting with the keyboard's focus; empty for none.
    QString focused = {};
  };
  State state() const;
  void restore(const State& state);
  /// To be called after a setting, the file or the text size has changed.
  void followChanges();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  /// A control, and how it shows a value.
  struct Row {
    const Setting* setting;
    QWidget* control;
    std::function<void(const std::string& text)> show;
  };

  void makeContents();
  void addRow(const Setting& setting, QBoxLayout& layout);
  Row makeToggle(const Setting& setting);
  Row makeChoice(const Setting& setting);
  Row makeField(const Setting& setting);
  /// The values that the user may choose; empty if the user has to write one.
  std::vector<std::string> choicesOf(const Setting& setting) const;
  QString nameOfChoice(const Setting& setting, const std::string& text) const;
  QString nameOf(const Setting& setting) const;
  void showValues();
  void showFaults();
  void set(const Setting& setting, const std::string& text);
  /// Hours are shown and typed in the user's language.
  QString shownText(const Setting& setting, const std::string& stored) const;
  std::string storedText(const Setting& setting, const QString& typed) const;
  QString mistakeIn(const Setting& setting, const std::string& text) const;

  SettingsServices services_;
  QScrollArea* scroll_ = nullptr;
  QLabel* faults_ = nullptr;
  std::vector<Row> rows_;
  /// The error of the last change; absent after a success.
  std::optional<Error> error_;
  /// `error_` in the user's language, if it is about a value that is not allowed.
  QString mistake_;
  ui::TextSizeCategory textSize_;
};

}  // namespace linewatch::desktop
