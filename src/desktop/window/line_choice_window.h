#pragma once

#include <QListWidget>
#include <functional>
#include <optional>

#include "desktop/window/companion_window.h"
#include "feeds/gtfs/line_stops.h"
#include "platform/line_choice.h"
#include "shared/outcome.h"

class QLayout;
class QRadioButton;
class QVBoxLayout;

namespace linewatch::desktop {

class NotifyChoice;

/// The choice in a few words, e.g. "No notices of stops · One direction". Empty for the default choice, which
/// is everything. `stops`: names the direction; may be null.
QString choiceInWords(const LineChoice& choice, const LineStops* stops, const WindowTexts& texts);

/// Chooses which incidents of a favourite line are shown: both directions or one, and the notices of all
/// stops, of some or of none. A change takes effect at once. Main thread.
class LineChoiceWindow final : public CompanionWindow {
 public:
  using Chosen = std::function<void(const LineChoice&)>;

  /// `chosen` is called with each new choice.
  LineChoiceWindow(SharedWindowTexts texts, const QString& line, LineChoice choice, Chosen chosen);

  void present() { showInFront(); }
  /// Adds the choice of notifications. To be called before the window is shown.
  void addNotifications(NotifyChoice* choice);
  /// Names the directions and lists the stops, or says why that is not possible.
  void showStops(const Outcome<LineStops>& stops);

 private:
  QWidget* makeScroller();
  QLayout* makeBottom();
  void addDirections(QVBoxLayout& layout);
  void addStops(QVBoxLayout& layout);
  void chooseDirection(std::optional<std::uint8_t> direction);
  void chooseStops(LineChoice::Stops stops);
  void stopsDidChange();
  void choose(const LineChoice& choice);

  /// All parts but the bottom. They scroll if the screen is too low.
  QVBoxLayout* column_ = nullptr;
  LineChoice choice_;
  Chosen chosen_;
  QRadioButton* directions_[2] = {};
  QRadioButton* someStops_ = nullptr;
  QListWidget* list_ = nullptr;
  QLabel* note_ = nullptr;
};

}  // namespace linewatch::desktop
