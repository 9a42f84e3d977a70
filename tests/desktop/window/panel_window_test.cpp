#include "desktop/window/panel_window.h"

#include <QAccessible>
#include <QImage>
#include <QMenu>
#include <QStyleFactory>
#include <QTimer>
#include <QVariantAnimation>
#include <QWindow>
#include <algorithm>
#include <cmath>
#include <utility>

#include "desktop/window/panel_test.h"
#include "desktop/window/window_colors.h"
#include "platform/companion_application.h"
#include "platform/preferences_store.h"
#include "widget/saved_ui_data.h"

namespace linewatch::desktop {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

bool isSaved(Platform& platform) {
  const auto store = platform.makePreferencesStore(kCompanionAppGroupSuite);
  return store->objectForKey(kSavedUIDataKey).has_value();
}

TEST_F(PanelTest, TheWidgetAppearsAndDisappearsWithTheWindow) {
  start();
  EXPECT_FALSE(panel_->controller().isVisible());
  show();
  EXPECT_TRUE(panel_->controller().isVisible());
  EXPECT_EQ(count("lookup"), 1U) << "the panel joins the fetch that appearing starts";
  EXPECT_EQ(rows().wordsOf(0).name, "LineWatch_Summary_advisory_count(2)");
  panel_->setWindowState(Qt::WindowMinimized);
  settle();
  EXPECT_FALSE(panel_->controller().isVisible());
  EXPECT_EQ(count("analytics"), 1U);
  panel_->setWindowState(Qt::WindowNoState);
  settle();
  EXPECT_TRUE(panel_->controller().isVisible());
  panel_->close();
  EXPECT_FALSE(panel_->controller().isVisible());
  EXPECT_EQ(count("analytics"), 2U);
}

TEST_F(PanelTest, ShowsTheSavedListAfterItWasKilled) {
  startShown();
  panel_->setExpanded(true);
  settle();
  const int height = panel_->height();
  // A killed process saves nothing at its end, so the list must be saved by now.
  ASSERT_TRUE(isSaved(*platform_));
  const auto saved = *platform_->makePreferencesStore(kCompanionAppGroupSuite)->objectForKey(kSavedUIDataKey);
  panel_ = nullptr;
  platform_->makePreferencesStore(kCompanionAppGroupSuite)->setObject(saved, kSavedUIDataKey);
  platform_->simulated().advance(700);
  makePanel();
  EXPECT_EQ(note(), "Updated 11 minutes ago");
  EXPECT_EQ(rows().rowCount(), 3U);
  EXPECT_TRUE(panel_->isExpanded());
  EXPECT_EQ(panel_->height(), height);
  EXPECT_FALSE(toggle().isHidden());
  EXPECT_EQ(toggle().text(), "Show Less");
  show();
  EXPECT_EQ(note(), "A note") << "the first answer has come";
}

TEST_F(PanelTest, ShowsAndHidesMoreRows) {
  startShown();
  ASSERT_FALSE(toggle().isHidden());
  EXPECT_EQ(toggle().text(), "Show More");
  const int compact = rows().height();
  EXPECT_EQ(compact, 110);
  press(toggle(), Qt::Key_Return);
  settle();
  EXPECT_EQ(rows().rowCount(), 3U);
  EXPECT_EQ(rows().height(), 330);
  EXPECT_EQ(toggle().text(), "Show Less");
  toggle().click();
  settle();
  EXPECT_EQ(rows().height(), compact);
  EXPECT_EQ(count("usage"), 2U);
}

TEST_F(PanelTest, TheHeaderIsAccessible) {
  startShown();
  QStringList named;
  for (QToolButton* const button : panel_->findChildren<QToolButton*>()) {
    if (!button->isVisible()) continue;
    QAccessibleInterface* const accessible = QAccessible::queryAccessibleInterface(button);
    ASSERT_NE(accessible, nullptr);
    named << accessible->text(QAccessible::Name);
    EXPECT_TRUE(accessible->state().focusable) << named.last().toStdString();
    ASSERT_NE(accessible->actionInterface(), nullptr);
    EXPECT_FALSE(accessible->actionInterface()->actionNames().isEmpty()) << named.last().toStdString();
  }
  EXPECT_EQ(named, (QStringList{"Show More", "Menu"}));
  QToolButton* const menu = panel_->findChildren<QToolButton*>().back();
  bool isOpen = false;
  QTimer::singleShot(0, menu->menu(), [&] {
    isOpen = menu->menu()->isVisible();
    menu->menu()->close();
  });
  press(*menu, Qt::Key_Enter);
  EXPECT_TRUE(isOpen);
}

TEST_F(PanelTest, AnImmediateResizeStopsTheAnimation) {
  startShown();
  const std::unique_ptr<QStyle> moving(QStyleFactory::create("fusion"));
  panel_->setStyle(moving.get());
  panel_->setExpanded(true);
  // The animation cannot end before the event loop runs.
  const auto& resizing = *panel_->findChild<QVariantAnimation*>();
  EXPECT_EQ(resizing.state(), QAbstractAnimation::Running);
  panel_->hide();
  panel_->show();
  EXPECT_EQ(resizing.state(), QAbstractAnimation::Stopped);
  EXPECT_EQ(rows().height(), 330);
}

TEST_F(PanelTest, HasNoToggleForOneRow) {
  auto world = cityWithAStrike();
  world.favorites = {{.line = "C"}};
  startShown(world);
  EXPECT_TRUE(toggle().isHidden());
  panel_->setExpanded(true);
  settle();
  EXPECT_FALSE(panel_->isExpanded());
  EXPECT_EQ(rows().height(), 110);
}

TEST_F(PanelTest, ExpandsAgainAfterAnError) {
  startShown();
  panel_->setExpanded(true);
  settle();
  change([](auto& world) { world.service.answer = simulation::WorldService::Answer::error; });
  panel_->requestUpdate();
  advance(1);
  EXPECT_EQ(rows().height(), 110);
  EXPECT_FALSE(panel_->isExpanded());
  EXPECT_TRUE(toggle().isHidden());
  change([](auto& world) { world.service.answer = simulation::WorldService::Answer::lines; });
  panel_->connectionDidReturn();
  advance(1);
  EXPECT_TRUE(panel_->isExpanded());
  EXPECT_EQ(rows().rowCount(), 3U);
  EXPECT_EQ(count("usage"), 3U) << "the widget is told of each change of mode";
  change([](auto& world) { world.service.answer = simulation::WorldService::Answer::error; });
  panel_->requestUpdate();
  advance(1);
  makePanel();
  EXPECT_FALSE(panel_->isExpanded()) << "only the error was saved";
  change([](auto& world) { world.service.answer = simulation::WorldService::Answer::lines; });
  show();
  EXPECT_TRUE(panel_->isExpanded());
}

TEST_F(PanelTest, RecoversAfterAFailedRefresh) {
  startShown();
  int errorsLogged = 0;
  platform_->simulated().log().setListener([&](const LogMessage& message) {
    if (message.level == LogLevel::error) ++errorsLogged;
  });
  const int height = panel_->height();
  change([](auto& world) { world.service.answer = simulation::WorldService::Answer::error; });
  while (count("lookup") < 2) advance(0.1);
  EXPECT_EQ(note(), "A note") << "the user did not ask for this update";
  advance(1);
  EXPECT_EQ(note(), "") << "the age is hidden beside an error";
  EXPECT_EQ(news(), "The advisories could not be loaded.");
  EXPECT_FALSE(rows().toolTip().isEmpty());
  advance(140);
  EXPECT_EQ(count("lookup"), 3U);
  EXPECT_EQ(errorsLogged, 1) << "each reason is logged once";
  change([](auto& world) { world.service.answer = simulation::WorldService::Answer::lines; });
  tryAgain().setFocus();
  press(tryAgain(), Qt::Key_Return);
  settle();
  EXPECT_EQ(note(), "Updating…");
  advance(1);
  EXPECT_EQ(count("lookup"), 4U);
  EXPECT_EQ(rows().wordsOf(0).name, "LineWatch_Summary_advisory_count(2)");
  EXPECT_EQ(note(), "A note");
  EXPECT_EQ(news(), "");
  EXPECT_EQ(panel_->height(), height);
  EXPECT_TRUE(rows().hasFocus()) << "the button that had the focus is gone";
  EXPECT_EQ(rows().toolTip(), "");
  while (count("lookup") < 5) advance(0.1);
  change([](auto& world) { world.favorites = {{.line = "C"}}; });
  panel_->favoritesDidChange();
  advance(2);
  EXPECT_EQ(count("lookup"), 6U) << "the refresh may not have seen the change";
}

TEST_F(PanelTest, TheHeaderShowsAllOfItsNewsAtEverySize) {
  start();
  feedNews_.states = {{.feed = "City Buses", .kind = FeedState::Kind::kept, .failures = 1}};
  feedNews_.states[0].since = platform_->mainLoop().now();
  feedNews_.states[0].failed = platform_->mainLoop().now();
  feedNews_.unknownLines = {{.name = "5"}, {.name = "7"}};
  show();
  EXPECT_EQ(news(),
            "City Buses cannot be updated; its advisories came less than a minute ago. "
            "No news of lines 5 and 7.");
  const auto& label = *panel_->findChild<QLabel*>("news");
  for (const int largerBy : {0, 20}) {
    for (int i = 0; i < largerBy; ++i) trigger(Qt::CTRL | Qt::Key_Plus);
    for (const auto direction : {Qt::LeftToRight, Qt::RightToLeft}) {
      for (const int width : {280, 640}) {
        panel_->setLayoutDirection(direction);
        panel_->resize(width, panel_->height());
        settle();
        EXPECT_GE(label.height(), label.heightForWidth(label.width()));
        EXPECT_GE(tryAgain().width(), tryAgain().sizeHint().width());
        EXPECT_TRUE(panel_->rect().contains(boundsOf(tryAgain())));
        EXPECT_GT(boundsOf(rows()).top(), boundsOf(label).bottom());
      }
    }
  }
  QAccessibleInterface* const accessible = QAccessible::queryAccessibleInterface(&tryAgain());
  EXPECT_EQ(accessible->text(QAccessible::Name), "Try Again");
  EXPECT_TRUE(accessible->state().focusable);
}

TEST_F(PanelTest, SavesTheListAgainAfterAFailure) {
  start();
  platform_->diskIsFull = true;
  show();
  EXPECT_FALSE(isSaved(*platform_));
  platform_->diskIsFull = false;
  panel_->requestUpdate();
  advance(1);
  EXPECT_TRUE(isSaved(*platform_)) << "although the list is unchanged";
}

TEST_F(PanelTest, HandlesShortcuts) {
  startShown();
  trigger(Qt::Key_F5);
  EXPECT_EQ(note(), "Updating…");
  advance(1);
  EXPECT_EQ(count("lookup"), 2U);
  EXPECT_EQ(note(), "A note");
  trigger(Qt::CTRL | Qt::Key_F);
  EXPECT_EQ(favoritesShown_, 1);
  const int width = panel_->width();
  for (int i = 0; i < 20; ++i) trigger(Qt::CTRL | Qt::Key_Plus);
  EXPECT_EQ(platform_->interfaceSettings().textSizeCategory(), ui::TextSizeCategory::AX5);
  EXPECT_GT(rows().height(), 200) << "rows grow with the text";
  EXPECT_EQ(panel_->height(), rows().height() + 88) << "the header grows less";
  trigger(Qt::CTRL | Qt::Key_0);
  EXPECT_EQ(rows().height(), 110);
  EXPECT_EQ(panel_->width(), width) << "it shrinks with the text";
  trigger(Qt::CTRL | Qt::Key_Minus);
  EXPECT_EQ(platform_->interfaceSettings().textSizeCategory(), ui::TextSizeCategory::M);
  EXPECT_EQ(rows().height(), 110) << "but do not shrink";
  press(*panel_, Qt::Key_Escape);
  EXPECT_TRUE(panel_->isVisible()) << "Esc closes a menu or a dialog, but never the program";
  for (const auto& [key, modifiers] :
       {std::pair(Qt::Key_F10, Qt::ShiftModifier), std::pair(Qt::Key_Menu, Qt::NoModifier)}) {
    press(rows(), key, modifiers);
    auto* const menu = panel_->findChild<QMenu*>();
    EXPECT_TRUE(menu->isVisible());
    menu->close();
  }
}

TEST_F(PanelTest, WidensWithItsText) {
  auto world = cityWithAStrike();
  world.lines["A"].alternateArtwork = {.artworkSourceType = kArtworkSourceShield,
                                       .shieldDataSource = ShieldDataSource{.shieldText = "Ring Line"}};
  startShown(world);
  const auto& data = *panel_->controller().dataSource();
  for (const char* const width : {"narrow", "wide"}) {
    if (width == std::string("wide")) panel_->resize(400, panel_->height());
    const int before = panel_->width();
    const double columnBefore = data.artworkColumnWidth();
    for (int i = 0; i < 3; ++i) trigger(Qt::CTRL | Qt::Key_Plus);
    EXPECT_EQ(panel_->width(),
              std::lround(before * ui::scaleFactor(ui::TextStyle::body, ui::TextSizeCategory::XXXL)));
    EXPECT_EQ(data.availableWidth(), panel_->width());
    EXPECT_GT(data.artworkColumnWidth(), columnBefore) << "shields grow with the text";
    trigger(Qt::CTRL | Qt::Key_0);
    EXPECT_EQ(panel_->width(), before);
    EXPECT_EQ(data.artworkColumnWidth(), columnBefore);
  }
  for (int i = 0; i < 20; ++i) trigger(Qt::CTRL | Qt::Key_Plus);
  EXPECT_LE(panel_->width(), panel_->screen()->availableGeometry().width());
  EXPECT_GT(panel_->width(), 700);
}

TEST_F(PanelTest, KeepsItsPlaceAndWidth) {
  startShown();
  panel_->move(60, 50);
  panel_->resize(500, panel_->height());
  settle();
  makePanel();
  EXPECT_EQ(panel_->width(), 500);
  EXPECT_EQ(panel_->pos(), QPoint(60, 50));
  show();
  panel_->move(-490, 50);
  settle();
  makePanel();
  EXPECT_NE(panel_->pos(), QPoint(-490, 50)) << "there it could not be moved with the mouse";
}

TEST_F(PanelTest, TheCardIsTheWindowWithoutATitleBar) {
  startShown();
  const QRect framed = boundsOf(rows());
  EXPECT_EQ(framed.left(), 0);
  EXPECT_EQ(framed.right(), panel_->width() - 1);
  EXPECT_EQ(framed.bottom(), panel_->height() - 1);
  panel_->setFrameless(true);
  panel_->setStaysOnTop(true);
  settle();
  EXPECT_TRUE(panel_->windowHandle()->flags().testFlags(Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint));
  EXPECT_EQ(boundsOf(rows()).size(), framed.size());
  EXPECT_GT(boundsOf(rows()).left(), 0) << "there is room for a shadow";
  const QImage image = panel_->grab().toImage();
  EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0);
  EXPECT_GT(image.pixelColor(panel_->width() / 2, image.height() - 5).alpha(), 0) << "the shadow";
  EXPECT_EQ(count("analytics"), 0U) << "the widget was visible all the time";
  panel_->setFrameless(false);
  EXPECT_EQ(boundsOf(rows()), framed);
}

TEST_F(PanelTest, PassesItsWidthToTheWidget) {
  startShown();
  panel_->resize(500, panel_->height());
  settle();
  EXPECT_EQ(panel_->controller().dataSource()->availableWidth(), 500);
  EXPECT_EQ(rows().rectOf(0).width(), 500);
}

TEST_F(PanelTest, FollowsTheDesktopsColours) {
  startShown();
  const auto middle = [this] {
    return panel_->grab().toImage().pixelColor(panel_->width() / 2, 14).lightness();
  };
  EXPECT_GT(middle(), 200);
  QPalette dark(QColor(40, 40, 40));
  panel_->setPalette(dark);
  settle();
  EXPECT_EQ(appearanceOf(panel_->palette()), ui::Appearance::dark);
  EXPECT_LT(middle(), 60);
  const QImage dots = panel_->findChildren<QToolButton*>().back()->grab().toImage();
  int brightest = 0;
  for (int x = 0; x < dots.width(); ++x) {
    for (int y = 0; y < dots.height(); ++y)
      brightest = std::max(brightest, dots.pixelColor(x, y).lightness());
  }
  EXPECT_GT(brightest, 200) << "the menu button is visible in the dark";
}

TEST_F(PanelTest, ALongListScrollsWithinTheScreen) {
  startShown(cityOf(40), 100);
  panel_->setExpanded(true);
  settle();
  EXPECT_EQ(rows().rowCount(), 40U);
  EXPECT_LE(panel_->height(), panel_->screen()->availableGeometry().height());
  EXPECT_EQ(rows().rowAt({10, 10}), 0U);
  press(rows(), Qt::Key_End);
  EXPECT_EQ(rows().currentRow(), 39U);
  EXPECT_EQ(rows().rowAt({10, rows().height() - 10}), 39U);
  maxRows_ = 0;
  makePanel();
  EXPECT_EQ(rows().rowCount(), kMostRows);
}

}  // namespace
}  // namespace linewatch::desktop
