#include "app/screen/panel.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>
#include <algorithm>
#include <filesystem>
#include <string_view>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/run_settings.h"
#include "desktop/feed_news.h"
#include "desktop/window/window_colors.h"
#include "desktop/window/window_events.h"
#include "shared/file_contents.h"
#include "shared/installation.h"
#include "storage/program_preferences.h"
#include "storage/stored_analytics.h"
#include "temporary_folder.h"

namespace linewatch::app {
namespace {

using desktop::click;
using desktop::waitUntil;
using desktop::window;

using testing::ElementsAre;
using testing::EndsWith;
using testing::Field;
using testing::HasSubstr;

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
    options_.settings = settingsOfRun({.common = options_, .command = PanelCommand()});
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
                                     Panel::Options{.showsExample = showsExample_});
  }
  void end() {
    panel_ = nullptr;
    session_ = nullptr;
  }
  ~PanelRunTest() override { end(); }

  QToolButton& toggle() { return *panel_->window().findChildren<QToolButton*>().front(); }
  std::filesystem::path settingsFile() const { return folder_.path() / "state" / "settings.toml"; }
  void writeSettings(std::string_view text) { ASSERT_FALSE(writeWhole(settingsFile(), text)); }
  ui::TextSizeCategory textSize() const { return screen_->settings().category; }
  static bool showsText(const QWidget& shown, const char* text) {
    const auto labels = shown.findChildren<QLabel*>();
    return std::ranges::any_of(labels, [text](const QLabel* label) { return label->text().contains(text); });
  }

  desktop::RowSurface& rows() { return panel_->window().rows(); }
  std::string nameOf(std::size_t row) { return rows().wordsOf(row).name.toStdString(); }
  void clickRow(std::size_t row) { click(rows(), QRectF(rows().rectOf(row)).center()); }

  TemporaryFolder folder_;
  bool showsExample_ = true;
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

  const auto textHeight = [] {
    return window<desktop::FavoritesWindow>()->findChild<QLineEdit*>()->fontInfo().pixelSize();
  };
  const int before = textHeight();
  panel_->window().setTextSize(ui::TextSizeCategory::AX3);
  EXPECT_GT(textHeight(), before) << "an open window follows the text size";
  EXPECT_EQ(window<desktop::DetailsWindow>()->windowTitle(), "M1 – a made-up city");

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

TEST_F(PanelRunTest, KeepsTheFavouritesOfTheOnlyFeedAfterItsRemoval) {
  const auto city = installedSampleCity();
  // No copy, which would keep the database for longer than the log of the session.
  const auto feeds = [this] { return session_->platform().saved()->feeds(); };
  ASSERT_TRUE(*feeds().add({"Rhine", (city / "gtfs").string(), (city / "alerts.pb").string()}));
  ASSERT_TRUE(*session_->platform().favorites().change({FavoriteKind::line, "Rhine", "M1"}, true));
  panel_->window().show();
  waitUntil([this] { return nameOf(0).starts_with("M1, Signal failure"); });
  ASSERT_TRUE(*feeds().remove("Rhine"));
  const auto saysSo = [this] {
    const auto labels = panel_->window().findChildren<QLabel*>("news");
    return labels.size() == 1 && labels.front()->text().startsWith("The feed Rhine was removed");
  };
  for (const bool isRestarted : {false, true}) {
    if (isRestarted) {
      end();
      showsExample_ = false;
      start();
      panel_->window().show();
    }
    waitUntil(saysSo);
    EXPECT_THAT(nameOf(0), HasSubstr("Can’t Load"));
    EXPECT_EQ(panel_->window().findChild<QAbstractButton*>("tryAgain")->text(), "Add a City…");
    EXPECT_EQ(panel_->window().windowTitle(), "LineWatch");
  }
  panel_->companion().showFavorites();
  EXPECT_TRUE(showsText(*window<desktop::FavoritesWindow>(), "The feed Rhine was removed"));
}

TEST_F(PanelRunTest, KnowsThatTheSampleCityIsMeantIfItCannotBeRead) {
  end();
  const auto session = Session::open(options_, [this](desktop::DesktopSettings& settings) {
    settings.sampleCity = folder_.path() / "none";
  });
  const auto fetched = (*session)->fetch();
  ASSERT_TRUE(fetched->error());
  EXPECT_TRUE(desktop::feedNews((*session)->platform(), 0, nullptr, fetched->error()).isSampleCity);
}

TEST_F(PanelRunTest, BeginsAnAddingAgainInAnotherLanguage) {
  const auto city = installedSampleCity();
  const desktop::AddPage::Addresses addresses{(city / "gtfs").string(), (city / "alerts.pb").string()};
  panel_->open({.setup = desktop::SetupWindow::State{.wanted = addresses}});
  for (auto* const field : window<desktop::SetupWindow>()->findChildren<QLineEdit*>()) {
    if (field->accessibleName() == "Name") field->setText("Rhine");
  }
  auto windows = panel_->openWindows();
  ASSERT_FALSE(windows.setup->isAdding);
  windows.setup->isAdding = true;
  end();
  start();
  panel_->open(windows);
  EXPECT_TRUE(panel_->openWindows().setup->isAdding);
  waitUntil([this] { return session_->platform().saved()->feeds().list()->size() == 1; });
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

TEST_F(PanelRunTest, FollowsTheSettingsFile) {
  end();
  std::filesystem::remove_all(settingsFile().parent_path());
  // An option would win over the file's language.
  options_.locale.reset();
  start();
  panel_->window().show();
  EXPECT_EQ(textSize(), ui::TextSizeCategory::L);
  // The folder is made after the start.
  std::filesystem::create_directories(settingsFile().parent_path());
  writeSettings("text-size = \"XL\"\nappearance = \"dark\"\non-top = true\nframeless = true\n");
  waitUntil([this] { return textSize() == ui::TextSizeCategory::XL; });
  EXPECT_EQ(desktop::appearanceOf(QApplication::palette()), ui::Appearance::dark);
  EXPECT_TRUE(panel_->window().windowFlags().testFlag(Qt::WindowStaysOnTopHint));
  EXPECT_TRUE(panel_->window().windowFlags().testFlag(Qt::FramelessWindowHint));
  // A file that is being edited changes nothing; the next contents do.
  writeSettings("text-size = \n");
  waitUntil([this] { return !session_->platform().settings().isReadable(); });
  EXPECT_EQ(textSize(), ui::TextSizeCategory::XL);
  bool isReplaced = false;
  panel_->languageDidChange = [&isReplaced] { isReplaced = true; };
  writeSettings("appearance = \"light\"\nlanguage = \"de\"\n");
  waitUntil([&isReplaced] { return isReplaced; });
  EXPECT_EQ(textSize(), ui::TextSizeCategory::L);
  EXPECT_EQ(desktop::appearanceOf(QApplication::palette()), ui::Appearance::light);
  EXPECT_FALSE(panel_->window().windowFlags().testFlag(Qt::FramelessWindowHint));
}

TEST_F(PanelRunTest, ChangesSettingsInTheWindow) {
  panel_->window().show();
  panel_->showSettings();
  auto& settings = *window<desktop::SettingsWindow>();
  const auto control = [&settings](const char* key) { return settings.findChild<QWidget*>(key); };
  desktop::press(*control("on-top"), Qt::Key_Space);
  EXPECT_THAT(*contentsOf(settingsFile()), EndsWith("on-top = true\n"));
  EXPECT_TRUE(panel_->window().windowFlags().testFlag(Qt::WindowStaysOnTopHint));
  const int before = control("text-size")->fontInfo().pixelSize();
  control("text-size")->setFocus();
  for (int i = 0; i < 6; ++i) desktop::press(*control("text-size"), Qt::Key_Down);
  EXPECT_EQ(textSize(), ui::TextSizeCategory::AX3);
  EXPECT_THAT(*contentsOf(settingsFile()), EndsWith("text-size = \"AX3\"\n"));
  EXPECT_GT(control("text-size")->fontInfo().pixelSize(), before) << "the window itself grows";
  auto& companion = dynamic_cast<QLineEdit&>(*control("companion"));
  companion.setText("viewer 'x");
  companion.setModified(true);
  desktop::press(companion, Qt::Key_Return);
  EXPECT_TRUE(showsText(settings, "a quote is not closed"));
  writeSettings("on-top = \n");
  waitUntil([&settings] { return showsText(settings, "settings.toml:1:10: this is not of the form"); });
  desktop::press(*control("frameless"), Qt::Key_Space);
  EXPECT_EQ(*contentsOf(settingsFile()), "on-top = \n") << "such a file is not written to";
  EXPECT_FALSE(dynamic_cast<QCheckBox&>(*control("frameless")).isChecked());
}

TEST_F(PanelRunTest, KeepsTheTextSizeThatWasChosenBeforeThereWasAFile) {
  const auto preferences = session_->platform().saved()->preferences(kProgramSuite);
  EXPECT_TRUE(preferences->setObject("AX1", "panelTextSize"));
  EXPECT_TRUE(session_->platform().saved()->database()->waitUntilSaved());
  end();
  start();
  EXPECT_EQ(textSize(), ui::TextSizeCategory::AX1);
  panel_->window().setTextSize(ui::TextSizeCategory::M);
  EXPECT_THAT(*contentsOf(settingsFile()), EndsWith("text-size = \"M\"\n"));
  EXPECT_FALSE(session_->platform().saved()->preferences(kProgramSuite)->objectForKey("panelTextSize"));
}

}  // namespace
}  // namespace linewatch::app
