#include "desktop/window/favorites_window.h"

#include <QContextMenuEvent>
#include <utility>

#include "desktop/window/companion_test.h"
#include "desktop/window/line_choice_menu.h"

namespace linewatch::desktop {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

TEST_F(CompanionTest, RemovesAFavouriteAndAddsItBack) {
  startCompanion();
  stored_ = {{FavoriteKind::line, "city", "r2"}, {FavoriteKind::line, "town", "x"}};
  ASSERT_TRUE(openURL("rova://favorites?type=2&map=3&session=abc"));
  EXPECT_THAT(labelsOf(*window<FavoritesWindow>()), Contains("Loading the lines…"));
  QListWidget& list = openFavorites();
  EXPECT_EQ(window<FavoritesWindow>()->windowTitle(), "Favorites");
  EXPECT_THAT(namesIn(list), ElementsAre("Zoo – Central", "Unknown line x"));
  list.setCurrentRow(0);
  press(list, Qt::Key_Space);
  EXPECT_EQ(stored_.size(), 1U);
  EXPECT_EQ(list.count(), 2) << "it can be added back";
  press(list, Qt::Key_Return);
  EXPECT_EQ(stored_.back().subject, "r2");
  EXPECT_EQ(changes_, 2);
  isReadOnly_ = true;
  press(list, Qt::Key_Space);
  EXPECT_EQ(list.item(0)->checkState(), Qt::Checked);
  EXPECT_THAT(labelsOf(*window<FavoritesWindow>()), Contains("state database: it may only be read"));
  EXPECT_EQ(changes_, 2);
}

TEST_F(CompanionTest, ChoosesTheStopsAndTheDirectionOfAFavourite) {
  startCompanion();
  const LineChoice stops{.stops = LineChoice::Stops::chosen, .stopIds = {"s&1", "s2"}};
  stored_ = {{FavoriteKind::line, "city", "r2", stops}};
  QListWidget& list = openFavorites();
  const auto spoken = [&] { return list.item(0)->data(Qt::AccessibleTextRole).toString().toStdString(); };
  EXPECT_EQ(spoken(), "2, Zoo – Central, Trams, Notices of stops s&1, s2");
  const auto openMenu = [&] {
    list.setCurrentRow(0);
    QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(), QPoint());
    QApplication::sendEvent(list.viewport(), &event);
    return window<LineChoiceMenu>();
  };
  const auto choose = [&](const QString& text) {
    LineChoiceMenu* const menu = openMenu();
    for (QAction* const action : menu->actions()) {
      if (action->text() == text) action->trigger();
    }
    menu->close();
    settle();
  };
  QStringList checked;
  for (const QAction* const action : openMenu()->actions()) {
    if (action->isChecked()) checked << action->text();
  }
  EXPECT_THAT(checked, ElementsAre("Notices of stops s&&1, s2", "Both directions"));
  window<LineChoiceMenu>()->close();

  choose("Direction 1 only");
  choose("No notices of stops");
  const LineChoice chosen{.stops = LineChoice::Stops::none, .direction = 1};
  EXPECT_EQ(stored_.front().choice, chosen);
  EXPECT_EQ(spoken(), "2, Zoo – Central, Trams, No notices of stops · Direction 1 only");
  EXPECT_EQ(changes_, 2);
  press(list, Qt::Key_Space);
  EXPECT_TRUE(stored_.empty());
  EXPECT_EQ(openMenu(), nullptr) << "it is no favourite";
  press(list, Qt::Key_Space);
  EXPECT_EQ(stored_.front().choice, chosen) << "it is added back as it was";
  isReadOnly_ = true;
  choose("Notices of all stops");
  EXPECT_THAT(labelsOf(*window<FavoritesWindow>()), Contains("state database: it may only be read"));
  EXPECT_EQ(spoken(), "2, Zoo – Central, Trams, No notices of stops · Direction 1 only");
}

TEST_F(CompanionTest, FollowsChangesByOthersAndKeepsThePlace) {
  startCompanion();
  stored_ = {{FavoriteKind::line, "city", "r2"}, {FavoriteKind::line, "city", "r1"}};
  companion_->favoritesDidChange();
  QListWidget& list = openFavorites();
  list.setCurrentRow(1);
  stored_ = {{FavoriteKind::line, "city", "r3"}, {FavoriteKind::line, "city", "r1"}};
  companion_->favoritesDidChange();
  ASSERT_THAT(namesIn(list), ElementsAre("Zoo – Central", "Harbour – Hills", "Ferry"));
  EXPECT_EQ(list.item(0)->checkState(), Qt::Unchecked)
      << "it can be added back, as if the user had removed it";
  EXPECT_EQ(list.item(2)->checkState(), Qt::Checked);
  EXPECT_EQ(list.currentRow(), 1);
  type("trams");
  const QStringList found = namesIn(list);
  list.setCurrentRow(static_cast<int>(found.indexOf("Harbour – Hills")));
  stored_ = {};
  companion_->favoritesDidChange();
  EXPECT_EQ(namesIn(list), found) << "the search is kept";
  for (int row = 0; row < list.count(); ++row) EXPECT_EQ(list.item(row)->checkState(), Qt::Unchecked) << row;
  whyUnreadable_ = "another program is using it";
  companion_->favoritesDidChange();
  EXPECT_EQ(namesIn(list), found) << "favourites that cannot be read keep their marks";
  linesLoaded_({.indexes = {cityLines(), cityLines()}});
  EXPECT_EQ(list.count(), 2 * found.size()) << "a feed was added";
  EXPECT_EQ(list.currentItem()->text(), "Harbour – Hills");
  EXPECT_EQ(changes_, 0);
}

TEST_F(CompanionTest, FindsAndAddsLines) {
  startCompanion();
  ASSERT_TRUE(openURL("rova://?t=r"));
  QListWidget& list = openFavorites();
  EXPECT_EQ(window<FavoritesWindow>()->windowTitle(), "Add Favorite Lines");
  EXPECT_EQ(list.count(), 3) << "all lines can be chosen";
  type("trams zoo");
  ASSERT_THAT(namesIn(list), ElementsAre("Zoo – Central"));
  click(*list.viewport(), list.visualItemRect(list.item(0)).center());
  EXPECT_THAT(stored_, ElementsAre(StoredFavorite{FavoriteKind::line, "city", "r2"}));
  type("nowhere");
  EXPECT_EQ(list.count(), 0);
  EXPECT_THAT(labelsOf(*window<FavoritesWindow>()), Contains("No line fits “nowhere”"));
  press(*window<FavoritesWindow>(), Qt::Key_Escape);
  EXPECT_THAT(namesIn(list), ElementsAre("Zoo – Central")) << "Esc clears the search first";
  press(*window<FavoritesWindow>(), Qt::Key_Escape);
  EXPECT_EQ(window<FavoritesWindow>(), nullptr);
}

TEST_F(CompanionTest, ListsNothingWithoutReadableFavourites) {
  startCompanion();
  stored_ = {{FavoriteKind::line, "city", "r2"}};
  linesError_ = failure("feed town", "/town", "no such file or folder");
  const auto hints = [] { return labelsOf(*window<FavoritesWindow>()); };
  QListWidget& list = openFavorites();
  EXPECT_THAT(namesIn(list), ElementsAre("Zoo – Central"));
  for (const auto& [searched, found] : {std::pair("trams", 2), std::pair("nowhere", 0)}) {
    type(searched);
    EXPECT_EQ(list.count(), found);
    EXPECT_THAT(hints(), Contains("feed town: /town: no such file or folder")) << searched;
  }
  whyUnreadable_ = "another program is using it";
  EXPECT_EQ(&openFavorites(), &list);
  EXPECT_EQ(list.count(), 0) << "nothing is listed without marks";
  EXPECT_THAT(hints(), Contains("state database: another program is using it"));
  EXPECT_FALSE(window<FavoritesWindow>()->findChild<QLineEdit*>()->isEnabled());
  whyUnreadable_ = "it is damaged";
  window<FavoritesWindow>()->followChanges();
  EXPECT_THAT(hints(), Contains("state database: it is damaged"));
  whyUnreadable_.clear();
  linesError_ = std::nullopt;
  const auto* const search = window<FavoritesWindow>()->findChild<QLineEdit*>();
  // The window tries again by itself.
  waitUntil([search] { return search->isEnabled(); });
  EXPECT_THAT(namesIn(list), ElementsAre("Zoo – Central"));
  EXPECT_THAT(hints(), Not(Contains("state database: it is damaged")));
}

}  // namespace
}  // namespace linewatch::desktop
