#include "desktop/window/companion.h"

#include <QAccessible>
#include <QTextDocument>
#include <filesystem>
#include <fstream>

#include <sys/stat.h>

#include "activity/rova_activity.h"
#include "companion/companion_session.h"
#include "desktop/window/companion_test.h"
#include "desktop/window/link_button.h"
#include "platform/url_display_options.h"
#include "temporary_folder.h"

namespace linewatch::desktop {
namespace {

using testing::HasSubstr;

TEST_F(CompanionTest, ShowsEveryTextOfAFeedAsPlainText) {
  const std::string hostile = "<img src=/dev/zero> & <b>[*]";
  startCompanion();
  change([&](simulation::World& world) {
    world.lines["A"].name = hostile;
    world.systems["M"].name = hostile;
    world.incidents["strike"].title = hostile;
    world.incidents["strike"].fullDescription = hostile;
    world.incidents["strike"].infoURL = "https://example.org/?<img+src=/dev/zero>";
  });
  panel_->requestUpdate();
  advance(1);
  openRow(activityOfRow(0));
  const auto fields = std::make_shared<const TransitLineFields>(TransitLineFields{
      .muid = 2, .name = hostile, .artwork = std::make_shared<const TransitArtworkDataSource>(artwork("7"))});
  find({{11, {.lines = {fields}, .stops = {hostile}}}});
  stored_ = {{FavoriteKind::line, hostile, hostile}};
  openFavorites();
  int toolTips = 0;
  for (QWidget* const widget : QApplication::allWidgets()) {
    const auto* const label = dynamic_cast<QLabel*>(widget);
    EXPECT_TRUE(!label || label->textFormat() == Qt::PlainText) << label->text().toStdString();
    if (widget->toolTip().isEmpty()) continue;
    ++toolTips;
    EXPECT_FALSE(widget->toolTip().contains("<img")) << widget->toolTip().toStdString();
  }
  EXPECT_GE(toolTips, 2);
  EXPECT_EQ(window<DetailsWindow>()->windowTitle().toStdString(), "<img src=/dev/zero> & <b>[*][*]");
  const auto& strip = *stripsOf(*window<DetailsWindow>()).back();
  EXPECT_EQ(strip.accessibleName().toStdString(), "Affected line: " + hostile);
  QTextDocument shown;
  shown.setHtml(strip.toolTip());
  EXPECT_EQ(shown.toPlainText().toStdString(), "Affected line: " + hostile);
}

TEST_F(CompanionTest, ReportsWhyContentCannotBeOpened) {
  startCompanion();
  const auto& data = activityOfRow(0);
  Dictionary info = *data.userInfo();
  Bytes bytes = *info.at("bs").get<Bytes>();
  bytes.resize(bytes.size() / 2);
  info.insert_or_assign("bs", bytes);
  auto options = std::make_shared<UrlDisplayOptions>();
  options->setMapType(3);
  RovaActivity withoutLine;
  withoutLine.setDisplayOptions(std::move(options));
  for (const Dictionary& given : {info, Dictionary{}, Dictionary{{"bs", "text"}}, Dictionary{{"bs", Bytes{}}},
                                  Dictionary{{"bs", withoutLine.data()}}}) {
    const std::optional<Error> failed = errorOfOpening({*data.activityType(), given});
    ASSERT_TRUE(failed);
    EXPECT_THAT(sentenceOf(*failed), HasSubstr(*data.activityType()));
  }
  EXPECT_FALSE(openURL("https://example.org"));
  EXPECT_FALSE(openURL("rova://elsewhere"));
  EXPECT_EQ(window<DetailsWindow>(), nullptr);
}

TEST_F(CompanionTest, OpenWindowsFollowTheTextSize) {
  startCompanion();
  openFavorites();
  const auto searchFont = [] { return window<FavoritesWindow>()->findChild<QLineEdit*>()->font(); };
  const double usual = searchFont().pointSizeF();
  window<FavoritesWindow>()->setPlace({{30, 40}, {450, 650}});
  change([](simulation::World& world) { world.textSize = ui::TextSizeCategory::AX3; });
  openFavorites();
  EXPECT_GT(searchFont().pointSizeF(), usual * 1.5);
  const WindowPlace place = window<FavoritesWindow>()->place();
  EXPECT_EQ(place.corner, QPoint(30, 40));
  EXPECT_GT(place.size.width(), 450) << "it widens with its text";
  EXPECT_GE(place.size.height(), 650);
}

TEST_F(CompanionTest, WindowsAreAccessible) {
  startCompanion();
  stored_ = {{FavoriteKind::line, "city", "r2"}};
  FavoriteList& list = openFavorites();
  QAccessibleInterface* const lines = QAccessible::queryAccessibleInterface(&list);
  EXPECT_EQ(lines->text(QAccessible::Name), "Favorites");
  QAccessibleInterface* const line = lines->child(1);
  EXPECT_EQ(line->role(), QAccessible::ListItem);
  EXPECT_EQ(line->text(QAccessible::Name), "2, Zoo – Central, Trams");
  EXPECT_TRUE(line->state().checkable);
  EXPECT_TRUE(line->state().checked);
  auto* const search = window<FavoritesWindow>()->findChild<QLineEdit*>();
  EXPECT_EQ(QAccessible::queryAccessibleInterface(search)->text(QAccessible::Name),
            "Search by line, name or agency");
  QWidget* next = search->nextInFocusChain();
  while (!(next->focusPolicy() & Qt::TabFocus)) next = next->nextInFocusChain();
  EXPECT_EQ(next, &list);

  openRow(activityOfRow(0));
  auto* const details = window<DetailsWindow>();
  QAccessibleInterface* const link = QAccessible::queryAccessibleInterface(details->findChild<LinkButton*>());
  EXPECT_EQ(link->role(), QAccessible::Link);
  EXPECT_EQ(link->text(QAccessible::Name), "More information");
  EXPECT_EQ(link->text(QAccessible::Description), "example.org");
  EXPECT_TRUE(link->actionInterface()->actionNames().contains(QAccessibleActionInterface::pressAction()));
  EXPECT_EQ(stripsOf(*details).front()->accessibleName(), "A");
  press(*details, Qt::Key_Escape);
  EXPECT_EQ(window<DetailsWindow>(), nullptr);
}

TEST_F(CompanionTest, RunsTheUsersCommand) {
  const TemporaryFolder folder;
  const std::string told = folder.path() / "told";
  ASSERT_EQ(mkfifo(told.c_str(), 0600), 0);
  startCompanion({"sh", "-c",
                  QString::fromStdString(
                      "printf '%s %s %s\\n' $0 $LINEWATCH_ACTIVITY_TYPE $LINEWATCH_SESSION > " + told)});
  const auto answer = [&] {
    std::ifstream stream(told);
    std::string line;
    std::getline(stream, line);
    return line;
  };
  ASSERT_TRUE(openURL("rova://?t=r"));
  EXPECT_EQ(answer(), "rova://?t=r  ");
  UserActivity activity{*activityOfRow(0).activityType(), *activityOfRow(0).userInfo()};
  activity.userInfo.insert_or_assign(std::string(kSessionKey), "abc");
  companion_->openActivity(activity, nullptr);
  const std::string line = answer();
  const std::string file = line.substr(0, line.find(' '));
  EXPECT_THAT(line, testing::EndsWith(" org.linewatch.Rova.Transit.Incident abc"));
  const std::string contents = textIn(file);
  EXPECT_EQ(Bytes(contents.begin(), contents.end()), *activityOfRow(0).userInfo()->at("bs").get<Bytes>());
  EXPECT_EQ(window<DetailsWindow>(), nullptr);
  companion_ = nullptr;
  EXPECT_FALSE(std::filesystem::exists(std::filesystem::path(file).parent_path()));

  startCompanion({"/nowhere/companion", "--open"});
  EXPECT_FALSE(openURL("rova://?t=r"));
}

}  // namespace
}  // namespace linewatch::desktop
