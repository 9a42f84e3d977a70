#pragma once

#include <QTimer>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "desktop/setup/setup_services.h"
#include "desktop/window/companion_window.h"

class QLabel;
class QVBoxLayout;

namespace linewatch::desktop {

class FeedRow;

/// The user's feeds with their states. Each can be asked again, get another key, and be removed. A removal
/// can be undone for a moment; the feed stays stored until the moment has passed. Main thread.
class FeedsWindow final : public CompanionWindow {
 public:
  /// `addCity` leads to the search for another city.
  FeedsWindow(SharedWindowTexts texts, SetupServices services, std::function<void()> addCity);
  /// Carries out the removals that were not undone.
  ~FeedsWindow() override;

  /// Shows the feeds, and asks their servers how they are.
  void present();
  /// To be called after feeds have been changed elsewhere.
  void followChanges();
  /// Whether a removal can be undone.
  bool canUndo() const { return !removals_.empty(); }
  /// For how long a removal can be undone.
  void setUndoTime(std::chrono::milliseconds time) { undoTime_ = time; }

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void check();
  void showFeeds();
  void showStates();
  FeedRow* makeRow(const StoredFeed& feed);
  void changeKey(StoredFeed feed, const std::string& key);
  void remove(const std::string& name);
  void undo(const std::string& name);
  void carryOut(const std::string& name);
  void carryOutAll();
  void showNote(const QString& note, TextTone tone = TextTone::faint);

  SetupServices services_;
  QLabel* note_;
  QVBoxLayout* list_;
  std::vector<StoredFeed> feeds_;
  std::vector<FeedState> states_;
  /// By the feed's name.
  std::map<std::string, FeedRow*> rows_;
  /// By the feed's name; a timer runs while the removal can be undone.
  std::map<std::string, std::unique_ptr<QTimer>> removals_;
  bool isChecking_ = false;
  std::chrono::milliseconds undoTime_{8000};
};

}  // namespace linewatch::desktop
