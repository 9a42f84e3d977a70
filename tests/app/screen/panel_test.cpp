#include "app/screen/panel.h"

#include <QApplication>
#include <QToolButton>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop/window/window_events.h"
#include "storage/stored_analytics.h"
#include "temporary_folder.h"

namespace linewatch::app {
namespace {

using desktop::click;
using desktop::waitUntil;
using desktop::window;

using testing::ElementsAre;
using testing::Field;

/// The whole program except for its process: the sample city, a state folder, threads and windows.
class PanelRunTest : public testing::Test {
 protected:
  void SetUp() override {
    desktop::needApplication();
    options_.stateDir = (folder_.path() / "state").string();
    options_.locale = UserLocale::parse("en");
    start();
  }
  void start() {
    auto session = Session::open(options_, [this](desktop::DesktopSettings& settings) {
      settings.screen = screen_;
      settings.isInteractive = true;
      settings.openActivity = [this](const UserActivity& activity, const OpenHandler& done) {
        panel_->companion().openActivity(activity, done);
      };
    });
    ASSERT_TRUE(session) << sentenceOf(session.error());
    session_ = std::move(*session);
    panel_ = std::make_unique<Panel>(*session_, *screen_, *UserLocale::parse("en"),
                                     Panel::Options{.showsExample = true});
  }
  void end() {
    panel_ = nullptr;
    session_ = nullptr;
  }
  ~PanelRunTest() override { end(); }

  QToolButton& toggle() { return *panel_->window().findChildren<QToolButton*>().front(); }
  desktop::RowSurface& rows() { return panel_->window().rows(); }
  std::string nameOf(std::size_t row) { return rows().wordsOf(row).name.toStdString(); }
  void clickRow(std::size_t row) { click(rows(), QRectF(rows().rectOf(row)).center()); }

  TemporaryFolder folder_;
  CommonOptions options_;
  std::shared_ptr<desktop::DrawingScreen> screen_ =
      std::make_shared<desktop::DrawingScreen>(desktop::ScreenSettings());
  std::unique_ptr<Session> session_;
  std::unique_ptr<Panel> panel_;
};

TEST_F(PanelRunTest, OpensDetailsAndChangesFavourites) {
  panel_->window().show();
  waitUntil([this] { return nameOf(0) == "5 Advisories"; });
  panel_->window().setExpanded(true);
  desktop::settle();
  ASSERT_EQ(rows().rowCount(), 6U);
  EXPECT_EQ(nameOf(0), "M1, Signal failure at Zentralbahnhof");
  clickRow(0);
  waitUntil([] { return window<desktop::DetailsWindow>() != nullptr; });
  EXPECT_EQ(window<desktop::DetailsWindow>()->windowTitle(), "M1 – a made-up city");

  clickRow(5);
  ASSERT_NE(window<desktop::FavoritesWindow>(), nullptr);
  auto* const list = window<desktop::FavoritesWindow>()->findChild<desktop::FavoriteList*>();
  waitUntil([list] { return list->rows().rowCount() > 1; });
  list->rows().setData(list->rows().index(1), Qt::Unchecked, Qt::CheckStateRole);
  waitUntil([this] { return nameOf(0).ends_with("Works on Pont-Neuf"); });
  EXPECT_EQ(rows().rowCount(), 5U);

  EXPECT_TRUE(session_->platform().saved()->database()->waitUntilSaved());
  const auto actions = storedUserActions(*session_->platform().saved()->database());
  ASSERT_TRUE(actions);
  const auto action = [](const char* name) { return Field(&StoredUserAction::action, name); };
  EXPECT_THAT(*actions,
              ElementsAre(action("SHOW_MORE"), action("TAP_WIDGET_ITEM"), action("TAP_WIDGET_ITEM")));
  const auto sessions = storedWidgetSessions(*session_->platform().saved()->database());
  ASSERT_TRUE(sessions);
  EXPECT_EQ(sessions->size(), 1U) << "the first tap ends the session";
}

TEST_F(PanelRunTest, FollowsFavouritesChangedByOtherPrograms) {
  panel_->window().show();
  waitUntil([this] { return nameOf(0) == "5 Advisories"; });
  const auto& favorites = session_->platform().favorites();
  const auto lines = favorites.lines();
  ASSERT_TRUE(lines);
  for (const StoredFavorite& line : *lines) ASSERT_TRUE(favorites.change(line, false));
  waitUntil([this] { return nameOf(0).starts_with("No Favorite Lines"); });
}

TEST_F(PanelRunTest, WaitsWithAnEmptyCardWhileTheStateIsLocked) {
  panel_->window().show();
  waitUntil([this] { return nameOf(0) == "5 Advisories"; });
  panel_->window().setExpanded(true);
  end();
  auto other = SqliteDatabase::open("state database", folder_.path() / "state" / "linewatch.sqlite",
                                    SqliteDatabase::Mode::readWrite, {});
  ASSERT_TRUE(other);
  const auto startHeld = [&] {
    ASSERT_FALSE(other->run("BEGIN EXCLUSIVE"));
    start();
    panel_->window().show();
    desktop::settle();
    EXPECT_TRUE(panel_->window().isVisible());
    EXPECT_TRUE(toggle().isHidden());
  };
  startHeld();
  panel_->window().close();
  ASSERT_FALSE(other->run("ROLLBACK"));
  end();
  startHeld();
  ASSERT_FALSE(other->run("ROLLBACK"));
  waitUntil([this] { return !toggle().isHidden(); });
  EXPECT_EQ(toggle().text(), "Show Less");
  EXPECT_EQ(rows().rowCount(), 6U) << "the list saved before both starts";
}

}  // namespace
}  // namespace linewatch::app
