#include "desktop/window/favorites_window.h"

#include <QAbstractButton>
#include <QContextMenuEvent>
#include <QListWidget>
#include <QRadioButton>
#include <QStandardItemModel>
#include <utility>

#include "desktop/window/companion_test.h"
#include "desktop/window/line_choice_window.h"
#include "desktop/window/line_delegate.h"
#include "desktop/window/list_row.h"
#include "presentation/memory_constrained_artwork_cache.h"

namespace linewatch::desktop {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

constexpr const char* kOwn = "Your lines, in the order of the rows";

/// How many pixels of each column a row's shield covers.
std::vector<int> columnsOfShield(const TransitArtworkDataSource& artwork) {
  const LineDelegate delegate(memoryConstrainedImageViewCache(), 3, 1, {}, nullptr);
  QStandardItemModel model(2, 1);
  model.setData(model.index(0, 0),
                QVariant::fromValue(std::make_shared<const TransitArtworkDataSource>(artwork)),
                LineDelegate::kArtworkRole);
  std::vector<QImage> rows(2, QImage(300, 60, QImage::Format_RGB32));
  for (int row = 0; row < 2; ++row) {
    rows[row].fill(Qt::white);
    QPainter painter(&rows[row]);
    QStyleOptionViewItem option;
    option.rect = rows[row].rect();
    delegate.paint(&painter, option, model.index(row, 0));
  }
  std::vector<int> columns(300);
  for (int x = 0; x < 300; ++x) {
    for (int y = 0; y < 60; ++y) columns[x] += rows[0].pixel(x, y) != rows[1].pixel(x, y);
  }
  return columns;
}

TEST_F(CompanionTest, DrawsEveryShieldWholeWithinItsColumn) {
  startCompanion();
  const int begin = static_cast<int>(kRowInset), end = begin + 52;
  for (const std::string text : {"1", "Orange", "Waterfront Shuttle"}) {
    const std::vector<int> columns = columnsOfShield(artwork(text));
    const auto isCovered = [](int pixels) { return pixels > 0; };
    const auto first = std::ranges::find_if(columns, isCovered) - columns.begin();
    const auto last = columns.rend() - std::find_if(columns.rbegin(), columns.rend(), isCovered) - 1;
    EXPECT_GE(first, begin) << text;
    EXPECT_LT(last, end) << text;
    EXPECT_LE(std::abs(columns[first] - columns[last]), 2) << text << ": one of its round ends is cut off";
  }
}

TEST_F(CompanionTest, ListsEveryLineByAgencyAndModeBelowTheUsersLines) {
  startCompanion();
  stored_ = {{FavoriteKind::line, "city", "r2"}, {FavoriteKind::line, "town", "x"}};
  ASSERT_TRUE(openURL("rova://favorites?type=2&map=3&session=abc"));
  EXPECT_THAT(labelsOf(*window<FavoritesWindow>()), Contains("Loading the lines…"));
  FavoriteList& list = openFavorites();
  EXPECT_EQ(window<FavoritesWindow>()->windowTitle(), "Favorites");
  EXPECT_THAT(rowsOf(list), ElementsAre(kOwn, "Zoo – Central *", "Unknown line x *", "Trams",
                                        "Harbour – Hills", "Zoo – Central *", "city · Ferry", "Ferry"));
}

TEST_F(CompanionTest, RemovesAFavouriteAndAddsItBack) {
  startCompanion();
  stored_ = {{FavoriteKind::line, "city", "r2"}, {FavoriteKind::line, "town", "x"}};
  FavoriteList& list = openFavorites();
  const QStringList before = rowsOf(list);
  makeCurrent(list, 1);
  press(list, Qt::Key_Space);
  EXPECT_EQ(stored_.size(), 1U);
  EXPECT_EQ(rowsOf(list)[1], "Zoo – Central") << "it can be added back";
  press(list, Qt::Key_Return);
  EXPECT_EQ(stored_.back().subject, "r2");
  EXPECT_EQ(rowsOf(list), before);
  EXPECT_EQ(changes_, 2);
  isReadOnly_ = true;
  press(list, Qt::Key_Space);
  EXPECT_EQ(rowsOf(list), before);
  EXPECT_THAT(labelsOf(*window<FavoritesWindow>()), Contains("state database: it may only be read"));
  EXPECT_EQ(changes_, 2);
}

TEST_F(CompanionTest, OrdersTheFavouritesByKeysAndByDragging) {
  startCompanion();
  for (const char* id : {"r1", "r2", "r3"}) stored_.push_back({FavoriteKind::line, "city", id});
  FavoriteList& list = openFavorites();
  const auto order = [this] {
    std::string ids;
    for (const StoredFavorite& favorite : stored_) ids += favorite.subject;
    return ids;
  };
  makeCurrent(list, 1);
  press(list, Qt::Key_Up, Qt::AltModifier);
  EXPECT_EQ(changes_, 0) << "it is the first one";
  press(list, Qt::Key_Down, Qt::AltModifier);
  EXPECT_EQ(order(), "r2r1r3");
  EXPECT_EQ(list.currentIndex().row(), 2) << "the moved line stays current";
  const auto middleOf = [&](int row) { return list.visualRect(list.rows().index(row)).center(); };
  drag(*list.viewport(), middleOf(3), middleOf(1));
  EXPECT_EQ(order(), "r3r2r1");
  EXPECT_EQ(changes_, 2);
  drag(*list.viewport(), middleOf(1), middleOf(5));
  EXPECT_EQ(order(), "r2r1r3") << "it stays among the user's lines";
  EXPECT_EQ(stored_.size(), 3U) << "a drag is no click";
  isReadOnly_ = true;
  press(list, Qt::Key_Up, Qt::AltModifier);
  EXPECT_EQ(rowsOf(list)[3].toStdString(), "Ferry *") << "what cannot be saved is not shown";
}

TEST_F(CompanionTest, ChoosesTheStopsAndTheDirectionOfAFavourite) {
  startCompanion();
  stored_ = {
      {FavoriteKind::line, "city", "r2", {.stops = LineChoice::Stops::chosen, .stopIds = {"s&1", "s2"}}}};
  FavoriteList& list = openFavorites();
  const auto spoken = [&] {
    return list.rows().index(1).data(Qt::AccessibleTextRole).toString().toStdString();
  };
  EXPECT_EQ(spoken(), "2, Zoo – Central, Trams, Notices of 2 stops");
  const auto open = [&] {
    makeCurrent(list, 1);
    QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(), QPoint());
    QApplication::sendEvent(list.viewport(), &event);
    return window<LineChoiceWindow>();
  };
  ASSERT_NE(open(), nullptr);
  stopsRead_(LineStops{.destinations = {std::vector<std::string>{"Zoo"}, {"Harbour & <b>", "Depot"}},
                       .stops = {{{"s&1", "s9"}, "Main Street"}, {{"s2"}, "Zoo"}, {{"s3"}, "Lake"}}});
  const auto press = [](const QString& text) {
    for (auto* const button : window<LineChoiceWindow>()->findChildren<QRadioButton*>()) {
      if (button->text() == text) button->click();
    }
  };
  auto* const stops = window<LineChoiceWindow>()->findChild<QListWidget*>();
  ASSERT_EQ(stops->count(), 3);
  EXPECT_EQ(stops->item(0)->checkState(), Qt::Checked);
  EXPECT_EQ(stops->item(2)->checkState(), Qt::Unchecked);
  stops->item(1)->setCheckState(Qt::Unchecked);
  EXPECT_THAT(stored_.front().choice.stopIds, ElementsAre("s&1", "s9")) << "both sides of the street";
  press("To Harbour && <b>, Depot");
  EXPECT_EQ(stored_.front().choice.direction, 1);
  press("No notices of stops");
  const LineChoice chosen{.stops = LineChoice::Stops::none, .direction = 1};
  EXPECT_EQ(stored_.front().choice, chosen);
  EXPECT_EQ(spoken(), "2, Zoo – Central, Trams, No notices of stops · To Harbour & <b>, Depot");
  EXPECT_EQ(changes_, 3);
  window<LineChoiceWindow>()->close();
  desktop::press(list, Qt::Key_Space);
  EXPECT_TRUE(stored_.empty());
  EXPECT_EQ(open(), nullptr) << "it is no favourite";
  desktop::press(list, Qt::Key_Space);
  EXPECT_EQ(stored_.front().choice, chosen) << "it is added back as it was";
  isReadOnly_ = true;
  ASSERT_NE(open(), nullptr);
  press("Both directions");
  EXPECT_THAT(labelsOf(*window<FavoritesWindow>()), Contains("state database: it may only be read"));
  EXPECT_EQ(stored_.front().choice, chosen);
  window<LineChoiceWindow>()->close();
}

TEST_F(CompanionTest, ReachesTheOptionsOfAFavouriteByKeys) {
  startCompanion();
  stored_ = {{FavoriteKind::line, "city", "r2"}};
  FavoriteList& list = openFavorites();
  auto& button = *window<FavoritesWindow>()->findChild<QAbstractButton*>("rowMenu");
  EXPECT_FALSE(button.isVisible()) << "no row is current";
  makeCurrent(list, 1);
  EXPECT_TRUE(button.isVisible());
  EXPECT_EQ(button.accessibleName(), "Options – Zoo – Central");
  press(button, Qt::Key_Return);
  ASSERT_NE(window<LineChoiceWindow>(), nullptr);
  window<LineChoiceWindow>()->close();
  settle();
  press(list, Qt::Key_F10, Qt::ShiftModifier);
  EXPECT_NE(window<LineChoiceWindow>(), nullptr);
  makeCurrent(list, 3);
  EXPECT_FALSE(button.isVisible()) << "it is no favourite";
}

TEST_F(CompanionTest, TellsAgenciesOfOneNameApart) {
  startCompanion();
  companion_->showFavorites();
  LineIndex::Contents contents{.feedName = "Trams East"};
  contents.agencies = {{.id = "t", .name = "Trams"}};
  contents.routes = {{.id = "r1", .shortName = "1", .agency = 0}};
  linesLoaded_({.indexes = {cityLines(), std::make_shared<const LineIndex>(std::move(contents))}});
  settle();
  EXPECT_THAT(rowsOf(*window<FavoritesWindow>()->findChild<FavoriteList*>()),
              AllOf(Contains("Trams (city)"), Contains("Trams East"), Not(Contains("Trams"))));
}

TEST_F(CompanionTest, ReopensTheWindowsInAnotherLanguage) {
  startCompanion();
  stored_ = {{FavoriteKind::line, "city", "r2"}};
  FavoriteList& list = openFavorites();
  type("zoo");
  makeCurrent(list, 0);
  press(list, Qt::Key_Menu);
  openRow(activityOfRow(0));
  window<FavoritesWindow>()->setPlace({{40, 50}, {500, 400}});
  const Companion::OpenWindows open = companion_->openWindows();
  companion_ = nullptr;
  EXPECT_EQ(window<LineChoiceWindow>(), nullptr);
  companion_ = std::make_unique<Companion>(std::make_shared<const WindowTexts>(*UserLocale::parse("de")),
                                           QStringList(), detailsServices(), favoritesServices());
  companion_->reopen(open);
  linesLoaded_({.indexes = {cityLines()}});
  settle();
  EXPECT_EQ(window<FavoritesWindow>()->windowTitle(), "Favoriten");
  EXPECT_EQ(window<FavoritesWindow>()->pos(), QPoint(40, 50));
  EXPECT_EQ(window<FavoritesWindow>()->size(), QSize(500, 400));
  EXPECT_EQ(window<FavoritesWindow>()->findChild<QLineEdit*>()->text(), "zoo");
  ASSERT_NE(window<LineChoiceWindow>(), nullptr);
  EXPECT_EQ(window<LineChoiceWindow>()->windowTitle(), "Zoo – Central");
  ASSERT_NE(window<DetailsWindow>(), nullptr);
  EXPECT_TRUE(window<DetailsWindow>()->isVisible());
}

TEST_F(CompanionTest, FollowsChangesByOthersAndKeepsThePlace) {
  startCompanion();
  stored_ = {{FavoriteKind::line, "city", "r2"}, {FavoriteKind::line, "city", "r1"}};
  companion_->favoritesDidChange();
  FavoriteList& list = openFavorites();
  makeCurrent(list, 2);
  stored_ = {{FavoriteKind::line, "city", "r3"}, {FavoriteKind::line, "city", "r1"}};
  companion_->favoritesDidChange();
  EXPECT_THAT(rowsOf(list).first(4), ElementsAre(kOwn, "Zoo – Central", "Harbour – Hills *", "Ferry *"))
      << "the removed line can be added back, as if the user had removed it";
  EXPECT_EQ(list.currentIndex().row(), 2);
  type("trams");
  makeCurrent(list, 0);
  const QString current = list.currentIndex().data().toString();
  stored_ = {};
  companion_->favoritesDidChange();
  EXPECT_THAT(rowsOf(list), testing::UnorderedElementsAre("Harbour – Hills", "Zoo – Central"));
  whyUnreadable_ = "another program is using it";
  companion_->favoritesDidChange();
  EXPECT_EQ(rowsOf(list).size(), 2) << "favourites that cannot be read keep their marks";
  linesLoaded_({.indexes = {cityLines(), cityLines()}});
  EXPECT_EQ(rowsOf(list).size(), 4) << "a feed was added";
  EXPECT_EQ(list.currentIndex().data().toString(), current);
  EXPECT_EQ(changes_, 0);
}

TEST_F(CompanionTest, FindsAndAddsLines) {
  startCompanion();
  ASSERT_TRUE(openURL("rova://?t=r"));
  FavoriteList& list = openFavorites();
  EXPECT_EQ(window<FavoritesWindow>()->windowTitle(), "Add Favorite Lines");
  EXPECT_THAT(rowsOf(list),
              ElementsAre("Trams", "Harbour – Hills", "Zoo – Central", "city · Ferry", "Ferry"));
  type("trams zoo");
  ASSERT_THAT(rowsOf(list), ElementsAre("Zoo – Central"));
  click(*list.viewport(), list.visualRect(list.rows().index(0)).center());
  EXPECT_THAT(stored_, ElementsAre(StoredFavorite{FavoriteKind::line, "city", "r2"}));
  EXPECT_EQ(window<FavoritesWindow>()->windowTitle(), "Favorites");
  type("nowhere");
  EXPECT_TRUE(rowsOf(list).isEmpty());
  EXPECT_THAT(labelsOf(*window<FavoritesWindow>()), Contains("No line fits “nowhere”"));
  press(*window<FavoritesWindow>(), Qt::Key_Escape);
  EXPECT_THAT(rowsOf(list).first(2), ElementsAre(kOwn, "Zoo – Central *")) << "Esc clears the search first";
  press(*window<FavoritesWindow>(), Qt::Key_Escape);
  EXPECT_EQ(window<FavoritesWindow>(), nullptr);
}

TEST_F(CompanionTest, ListsNothingWithoutReadableFavourites) {
  startCompanion();
  stored_ = {{FavoriteKind::line, "city", "r2"}};
  linesError_ = failure("feed town", "/town", "no such file or folder");
  const auto hints = [] { return labelsOf(*window<FavoritesWindow>()); };
  FavoriteList& list = openFavorites();
  for (const auto& [searched, found] : {std::pair("trams", 2), std::pair("nowhere", 0)}) {
    type(searched);
    EXPECT_EQ(rowsOf(list).size(), found);
    EXPECT_THAT(hints(), Contains("feed town: /town: no such file or folder")) << searched;
  }
  whyUnreadable_ = "another program is using it";
  EXPECT_EQ(&openFavorites(), &list);
  EXPECT_TRUE(rowsOf(list).isEmpty()) << "nothing is listed without marks";
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
  EXPECT_THAT(rowsOf(list), Contains("Zoo – Central *"));
  EXPECT_THAT(hints(), Not(Contains("state database: it is damaged")));
}

}  // namespace
}  // namespace linewatch::desktop
