#pragma once

#include <QWidget>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "desktop/window/window_texts.h"
#include "feeds/feed_state.h"
#include "shared/date.h"
#include "storage/stored_feeds.h"

class QLabel;
class QLineEdit;

namespace linewatch::desktop {

class ActionButton;

/// One feed in the list of feeds: its name, its state, and buttons to try again, to change its key and to
/// remove it. After a removal: a sentence and a button that undoes it. Main thread.
class FeedRow final : public QWidget {
 public:
  struct Actions {
    std::function<void()> tryAgain;
    std::function<void(const std::string& key)> changeKey;
    std::function<void()> remove;
    std::function<void()> undo;
  };

  FeedRow(SharedWindowTexts texts, const StoredFeed& feed, Actions actions);

  /// Absent when the state is not known yet.
  void showState(const std::optional<FeedState>& state, Date now);
  void showRemoved(bool isRemoved);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QWidget* makePresent(const StoredFeed& feed);
  QWidget* makeRemoved(const std::string& name);
  QWidget* makeKeyEntry();
  ActionButton* makeButton(const char* text, std::function<void()> action);
  void showKeyEntry(bool isShown);

  SharedWindowTexts texts_;
  QString name_;
  Actions actions_;
  QLabel* state_ = nullptr;
  QLineEdit* key_ = nullptr;
  ActionButton* changeKey_ = nullptr;
  ActionButton* undo_ = nullptr;
  QWidget* keyEntry_ = nullptr;
  QWidget* present_;
  QWidget* removed_;
};

}  // namespace linewatch::desktop
