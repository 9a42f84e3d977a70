#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <optional>

#include "desktop/setup/add_page.h"
#include "desktop/setup/setup_services.h"
#include "desktop/window/companion_window.h"

class QLabel;
class QStackedWidget;

namespace linewatch::desktop {

class ActionButton;
class LinesPage;
class SearchPage;

/// The set-up: find a city, add its feed, choose lines. Each page leads back to the one before it, the first
/// one out of the set-up. Main thread.
class SetupWindow final : public CompanionWindow {
 public:
  /// `finished`: called when the user is done or has left by Back.
  SetupWindow(SharedWindowTexts texts, SetupServices services, std::function<void()> finished);

  /// Shows the search for a city.
  void findCity();
  /// Shows the lines of all feeds.
  void chooseLines();
  /// The page, its entries and the window's place, from which a set-up in another language is made. It starts
  /// a running adding again.
  struct State {
    WindowPlace place;
    /// The search for a city.
    QString search;
    /// The feed of the page that adds one; absent on other pages.
    std::optional<AddPage::Wanted> wanted = {};
    /// The texts of that page's fields.
    QStringList entries = {};
    bool isAdding = false;
    bool showsLines = false;
    /// The feed whose lines are shown; absent for all feeds.
    std::optional<FeedFindings> added = {};
  };
  State state() const;
  bool isAdding() const;
  void restore(const State& state);
  /// To be called after another program or window has changed favourites or feeds.
  void followChanges();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void showSearch();
  void showAdd(const AddPage::Wanted& wanted);
  void showLines(const std::optional<FeedFindings>& added);
  void show(QWidget* page, const QString& title);
  void goBack();
  void finish();

  SetupServices services_;
  std::function<void()> finished_;
  QLabel* title_;
  ActionButton* back_;
  QStackedWidget* pages_;
  SearchPage* search_ = nullptr;
  /// Null unless it is shown, as the next one.
  AddPage* add_ = nullptr;
  LinesPage* lines_ = nullptr;
  /// What `add_` adds, and the new feed of `lines_`.
  std::optional<AddPage::Wanted> wanted_;
  std::optional<FeedFindings> added_;
};

}  // namespace linewatch::desktop
