#include "desktop/window/companion.h"

#include <QAccessible>
#include <QDeadlineTimer>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QTextDocument>
#include <fstream>

#include <sys/stat.h>

#include "activity/rova_activity.h"
#include "activity/user_activity_data.h"
#include "companion/companion_session.h"
#include "desktop/window/artwork_strip.h"
#include "desktop/window/line_delegate.h"
#include "desktop/window/link_button.h"
#include "desktop/window/panel_test.h"
#include "platform/url_display_options.h"
#include "shared/failure.h"
#include "temporary_folder.h"

namespace linewatch::desktop {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

SharedLineIndex cityLines() {
  LineIndex::Contents contents{.feedName = "city"};
  contents.agencies = {{.id = "t", .name = "Trams"}};
  contents.routes = {{.id = "r1", .shortName = "1", .longName = "Harbour – Hills", .agency = 0},
                     {.id = "r2", .shortName = "2", .longName = "Zoo – Central", .agency = 0},
                     {.id = "r3", .longName = "Ferry", .type = 4}};
  return std::make_shared<const LineIndex>(std::move(contents));
}

/// A panel, and a companion in which its rows are opened.
class CompanionTest : public PanelTest {
 protected:
  void startCompanion(const QStringList& command = {}) {
    auto world = cityWithAStrike();
    world.incidents["strike"].fullDescription = "Few trains run.\n\nMore <b>buses</b> do.";
    world.incidents["strike"].end = Seconds(3600);
    world.incidents["strike"].infoURL = "https://example.org/strike";
    world.incidents["strike"].blocking = true;
    world.incidents["works"].start = Seconds(-60);
    world.incidents["works"].infoURL = "file:///etc/passwd";
    world.systems["M"] = {.name = "Metro"};
    world.lines["A"].system = "M";
    world.lines["A"].alternateArtwork = artwork("A");
    startShown(world);
    panel_->setExpanded(true);
    settle();
    companion_ = std::make_unique<Companion>(std::make_shared<const WindowTexts>(*UserLocale::parse("en")),
                                             command, detailsServices(), favoritesServices());
  }
  ~CompanionTest() override { companion_ = nullptr; }

  static TransitArtworkDataSource artwork(const std::string& text) {
    return {.artworkSourceType = kArtworkSourceShield,
            .shieldDataSource = ShieldDataSource{.shieldText = text}};
  }
  /// Opens the row's own activity.
  bool openRow(const RVUserActivityData& data) {
    bool opened = false;
    companion_->openActivity({*data.activityType(), *data.userInfo()},
                             [&](bool success, const std::optional<Error>&) { opened = success; });
    settle();
    return opened;
  }
  const RVUserActivityData& activityOfRow(std::size_t row) {
    const auto item =
        std::get<SharedTransitItem>(panel_->controller().dataSource()->_itemAtIndexPath({0, row}));
    return dynamic_cast<const RVUserActivityData&>(*item->openable());
  }
  const RVUserActivityData& activityOfSummary() {
    const auto& summary = panel_->controller().dataSource()->listItem()->summaryItem();
    return *std::get<std::shared_ptr<const RVTransitSummaryItem>>(summary)->userActivityData();
  }
  bool openURL(const std::string& url) {
    bool opened = false;
    companion_->openURL({url}, [&](bool success) { opened = success; });
    settle();
    return opened;
  }

  template <class Window>
  static Window* window() {
    for (QWidget* const widget : QApplication::topLevelWidgets()) {
      if (auto* const found = dynamic_cast<Window*>(widget); found && found->isVisible()) return found;
    }
    return nullptr;
  }
  static std::vector<ArtworkStrip*> stripsOf(const QWidget& window) {
    std::vector<ArtworkStrip*> strips;
    for (QWidget* const child : window.findChildren<QWidget*>()) {
      if (auto* const strip = dynamic_cast<ArtworkStrip*>(child)) strips.push_back(strip);
    }
    return strips;
  }
  static QStringList labelsOf(const QWidget& window) {
    QStringList texts;
    for (const auto* label : window.findChildren<QLabel*>()) texts.append(label->text());
    return texts;
  }

  DetailsServices detailsServices() {
    return {.findLines =
                [this](std::vector<std::uint64_t> muids, const DetailsServices::LinesFound& found) {
                  askedLines_ = std::move(muids);
                  findLines_ = found;
                },
            .openLink = [this](const QUrl& url) { openedLinks_.append(url.toString()); }};
  }
  FavoritesServices favoritesServices() {
    return {.favorites = [this]() -> Outcome<std::vector<StoredFavorite>> {
              if (!whyUnreadable_.empty()) return failure("state database", "", whyUnreadable_);
              return stored_;
            },
            .change = [this](const StoredFavorite& favorite, bool isAdded) -> Outcome<bool> {
              if (isReadOnly_) return failure("state database", "", "it may only be read");
              std::erase(stored_, favorite);
              if (isAdded) stored_.push_back(favorite);
              return true;
            },
            .loadLines = [this](const std::function<void(const FeedLines&)>& done) { linesLoaded_ = done; },
            .didChange = [this] { ++changes_; }};
  }
  QListWidget& openFavorites() {
    companion_->showFavorites();
    linesLoaded_({.indexes = {cityLines()}, .error = linesError_});
    settle();
    return *window<FavoritesWindow>()->findChild<QListWidget*>();
  }
  static void type(const QString& text) {
    window<FavoritesWindow>()->findChild<QLineEdit*>()->setText(text);
    settle();
  }
  static QStringList namesIn(const QListWidget& list) {
    QStringList names;
    for (int row = 0; row < list.count(); ++row) names.append(list.item(row)->text());
    return names;
  }

  std::unique_ptr<Companion> companion_;
  std::vector<std::uint64_t> askedLines_;
  DetailsServices::LinesFound findLines_;
  QStringList openedLinks_;
  std::vector<StoredFavorite> stored_;
  std::function<void(const FeedLines&)> linesLoaded_;
  std::optional<Error> linesError_;
  bool isReadOnly_ = false;
  /// Empty: the favourites can be read.
  std::string whyUnreadable_;
  int changes_ = 0;
};

TEST_F(CompanionTest, ShowsTheLineOfARow) {
  startCompanion();
  ASSERT_TRUE(openRow(activityOfRow(0)));
  const auto* const details = window<DetailsWindow>();
  ASSERT_NE(details, nullptr);
  EXPECT_EQ(details->windowTitle(), "A");
  const QStringList labels = labelsOf(*details);
  EXPECT_THAT(labels, Contains("Metro"));
  EXPECT_THAT(labels, Not(Contains("A"))) << "the shield says it";
  EXPECT_THAT(labels, Contains("Strike"));
  EXPECT_THAT(labels, Contains("No service"));
  EXPECT_THAT(labels, Contains("Few trains run.\n\nMore <b>buses</b> do."));
  EXPECT_TRUE(labels.filter("Until ").size() == 1) << labels.join("|").toStdString();
  for (const QLabel* label : details->findChildren<QLabel*>()) EXPECT_EQ(label->textFormat(), Qt::PlainText);
  press(*details->findChild<LinkButton*>(), Qt::Key_Return);
  EXPECT_THAT(openedLinks_, ElementsAre("https://example.org/strike"));
}

TEST_F(CompanionTest, AddsAffectedLinesWhenTheyAreFound) {
  startCompanion();
  openRow(activityOfRow(0));
  EXPECT_THAT(askedLines_, ElementsAre(11U));
  const auto lineCalled = [](std::uint64_t muid, const std::string& name) {
    const auto shield = std::make_shared<const TransitArtworkDataSource>(artwork(name));
    return std::make_shared<const TransitLineFields>(
        TransitLineFields{.muid = muid, .name = name, .artwork = shield});
  };
  const auto strips = [] { return stripsOf(*window<DetailsWindow>()); };
  const auto findOfFirst = findLines_;
  findLines_({{11, {lineCalled(1, "A")}}});
  EXPECT_EQ(strips().size(), 1U) << "the line that the details are of";
  const int height = window<DetailsWindow>()->height();
  findLines_({{11, {lineCalled(1, "A"), lineCalled(2, "B")}}, {99, {}}});
  ASSERT_EQ(strips().size(), 2U);
  EXPECT_EQ(strips().back()->accessibleName(), "Affected lines: A, B");
  EXPECT_GT(window<DetailsWindow>()->height(), height);
  openRow(activityOfRow(1));
  findOfFirst({{12, {lineCalled(1, "A"), lineCalled(2, "B")}}});
  EXPECT_EQ(strips().size(), 1U) << "what was asked for other details comes too late";
}

TEST_F(CompanionTest, NoTextOfAFeedIsRichText) {
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
  findLines_({{11, {fields}}});
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

TEST_F(CompanionTest, ShowsTheIncidentsOfTheSummary) {
  startCompanion();
  ASSERT_TRUE(openRow(activityOfSummary()));
  const auto* const details = window<DetailsWindow>();
  EXPECT_EQ(details->windowTitle(), "2 Advisories");
  EXPECT_THAT(labelsOf(*details), Contains("Strike"));
  EXPECT_THAT(labelsOf(*details), Contains("Works"));
  EXPECT_THAT(askedLines_, ElementsAre(11U, 12U));
  EXPECT_EQ(details->findChildren<LinkButton*>().size(), 1) << "only pages of the web are linked to";
}

TEST_F(CompanionTest, ExplainsWhatItCannotOpen) {
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
    std::optional<Error> failed;
    companion_->openActivity({*data.activityType(), given},
                             [&](bool, const std::optional<Error>& error) { failed = error; });
    ASSERT_TRUE(failed);
    EXPECT_THAT(sentenceOf(*failed), HasSubstr(*data.activityType()));
  }
  EXPECT_FALSE(openURL("https://example.org"));
  EXPECT_FALSE(openURL("rova://elsewhere"));
  EXPECT_EQ(window<DetailsWindow>(), nullptr);
}

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
  EXPECT_EQ(list.count(), 2) << "it can be taken back";
  press(list, Qt::Key_Return);
  EXPECT_EQ(stored_.back().subject, "r2");
  EXPECT_EQ(changes_, 2);
  isReadOnly_ = true;
  press(list, Qt::Key_Space);
  EXPECT_EQ(list.item(0)->checkState(), Qt::Checked);
  EXPECT_THAT(labelsOf(*window<FavoritesWindow>()), Contains("state database: it may only be read"));
  EXPECT_EQ(changes_, 2);
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
  EXPECT_EQ(list.item(0)->checkState(), Qt::Unchecked) << "and can be taken back, as if removed here";
  EXPECT_EQ(list.item(2)->checkState(), Qt::Checked);
  EXPECT_EQ(list.currentRow(), 1);
  type("trams");
  const QStringList found = namesIn(list);
  list.setCurrentRow(static_cast<int>(found.indexOf("Harbour – Hills")));
  stored_ = {};
  companion_->favoritesDidChange();
  EXPECT_EQ(namesIn(list), found) << "the search goes on";
  for (int row = 0; row < list.count(); ++row) EXPECT_EQ(list.item(row)->checkState(), Qt::Unchecked) << row;
  whyUnreadable_ = "another program is using it";
  companion_->favoritesDidChange();
  EXPECT_EQ(namesIn(list), found) << "what cannot be read just now may be as it was";
  linesLoaded_({.indexes = {cityLines(), cityLines()}});
  EXPECT_EQ(list.count(), 2 * found.size()) << "a feed was added";
  EXPECT_EQ(list.currentItem()->text(), "Harbour – Hills");
  EXPECT_EQ(changes_, 0);
}

TEST_F(CompanionTest, AnOpenWindowFollowsTheTextSize) {
  startCompanion();
  openFavorites();
  const auto searchFont = [] { return window<FavoritesWindow>()->findChild<QLineEdit*>()->font(); };
  const double usual = searchFont().pointSizeF();
  window<FavoritesWindow>()->setGeometry(30, 40, 500, 600);
  change([](simulation::World& world) { world.textSize = ui::TextSizeCategory::AX3; });
  openFavorites();
  EXPECT_GT(searchFont().pointSizeF(), usual * 1.5);
  EXPECT_EQ(window<FavoritesWindow>()->geometry(), QRect(30, 40, 500, 600));
}

TEST_F(CompanionTest, FindsAndAddsLines) {
  startCompanion();
  ASSERT_TRUE(openURL("rova://?t=r"));
  QListWidget& list = openFavorites();
  EXPECT_EQ(window<FavoritesWindow>()->windowTitle(), "Add Favorite Lines");
  EXPECT_EQ(list.count(), 3) << "lines to choose from";
  type("trams zoo");
  ASSERT_THAT(namesIn(list), ElementsAre("Zoo – Central"));
  click(*list.viewport(), list.visualItemRect(list.item(0)).center());
  EXPECT_THAT(stored_, ElementsAre(StoredFavorite{FavoriteKind::line, "city", "r2"}));
  type("nowhere");
  EXPECT_EQ(list.count(), 0);
  EXPECT_THAT(labelsOf(*window<FavoritesWindow>()), Contains("No line fits “nowhere”"));
  press(*window<FavoritesWindow>(), Qt::Key_Escape);
  EXPECT_THAT(namesIn(list), ElementsAre("Zoo – Central")) << "the search has gone first";
  press(*window<FavoritesWindow>(), Qt::Key_Escape);
  EXPECT_EQ(window<FavoritesWindow>(), nullptr);
}

TEST_F(CompanionTest, WorksWithoutAnUnreadableFeedButNotWithoutFavourites) {
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
  EXPECT_EQ(list.count(), 0) << "nobody knows which of them are chosen";
  EXPECT_THAT(hints(), Contains("state database: another program is using it"));
  EXPECT_FALSE(window<FavoritesWindow>()->findChild<QLineEdit*>()->isEnabled());
  whyUnreadable_ = "it is damaged";
  window<FavoritesWindow>()->followChanges();
  EXPECT_THAT(hints(), Contains("state database: it is damaged"));
  whyUnreadable_.clear();
  linesError_ = std::nullopt;
  const auto* const search = window<FavoritesWindow>()->findChild<QLineEdit*>();
  for (QDeadlineTimer patience(5000); !search->isEnabled() && !patience.hasExpired();)
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
  EXPECT_TRUE(search->isEnabled()) << "by itself, once they can be read";
  EXPECT_THAT(namesIn(list), ElementsAre("Zoo – Central"));
  EXPECT_THAT(hints(), Not(Contains("state database: it is damaged")));
}

TEST_F(CompanionTest, WindowsAreAccessible) {
  startCompanion();
  stored_ = {{FavoriteKind::line, "city", "r2"}};
  const QListWidget& list = openFavorites();
  QAccessibleInterface* const lines = QAccessible::queryAccessibleInterface(const_cast<QListWidget*>(&list));
  EXPECT_EQ(lines->text(QAccessible::Name), "Favorites");
  QAccessibleInterface* const line = lines->child(0);
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
  EXPECT_EQ(link->role(), QAccessible::Button);
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
  EXPECT_FALSE(std::filesystem::exists(file));

  startCompanion({"/nowhere/companion", "--open"});
  EXPECT_FALSE(openURL("rova://?t=r"));
}

}  // namespace
}  // namespace linewatch::desktop
