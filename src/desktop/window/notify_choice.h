#pragma once

#include <QWidget>
#include <functional>
#include <optional>

#include "desktop/window/window_texts.h"
#include "notices/notice_rules.h"
#include "notices/weekly_hours.h"
#include "shared/error.h"
#include "shared/outcome.h"

class QButtonGroup;
class QComboBox;
class QLabel;
class QLineEdit;

namespace linewatch::desktop {

/// Chooses when the user is notified of a line: never, always or at some hours, and from which severity on. A
/// change takes effect at once. Needs an installed platform. Main thread.
class NotifyChoice final : public QWidget {
 public:
  /// Saves the subscription; absent for no notifications. Gives the error if it cannot be saved.
  using Save = std::function<std::optional<Error>(const std::optional<notices::Subscription>&)>;

  /// `present`: the subscription of the line; absent if there is none.
  NotifyChoice(SharedWindowTexts texts, const notices::LineKey& line,
               const std::optional<notices::Subscription>& present, Save save);

 private:
  void makeTimes(const std::optional<notices::Subscription>& present);
  void makeSeverities(const std::optional<notices::Subscription>& present);
  void didChange();
  Outcome<notices::WeeklyHours> chosenHours() const;
  void save();
  void showError(const std::optional<Error>& error);
  /// Empty for none.
  void showMistake(const QString& text);

  SharedWindowTexts texts_;
  notices::LineKey line_;
  Save save_;
  QButtonGroup* times_;
  QLineEdit* hours_ = nullptr;
  QComboBox* severities_ = nullptr;
  QLabel* error_;
};

}  // namespace linewatch::desktop
