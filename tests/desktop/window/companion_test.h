#pragma once

#include <QLabel>
#include <QLineEdit>
#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "activity/user_activity_data.h"
#include "desktop/window/artwork_strip.h"
#include "desktop/window/companion.h"
#include "desktop/window/favorite_list.h"
#include "desktop/window/panel_test.h"
#include "shared/failure.h"

namespace linewatch::desktop {

inline SharedLineIndex cityLines() {
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
  /// Opens the activity of a row.
  bool openRow(const RVUserActivityData& data) {
    return !errorOfOpening({*data.activityType(), *data.userInfo()});
  }
  /// Waits until the activity has been opened and the details window shows all of it.
  std::optional<Error> errorOfOpening(const UserActivity& activity) {
    const std::optional<Error> failed = errorOfDecoding(activity);
    waitForDetails();
    return failed;
  }
  /// Waits only until the details window has begun to show the activity.
  std::optional<Error> errorOfDecoding(const UserActivity& activity) {
    bool isDone = false;
    std::optional<Error> failed;
    companion_->openActivity(activity, [&](bool success, const std::optional<Error>& error) {
      isDone = true;
      failed = error;
      EXPECT_NE(success, error.has_value());
    });
    waitUntil([&] { return isDone; });
    return failed;
  }
  /// Tells the details window what the feeds know, and waits until it shows that.
  void find(const FoundIncidents& incidents) { find(found_, incidents); }
  void find(const DetailsServices::IncidentsFound& found, const FoundIncidents& incidents) {
    found(incidents);
    waitForDetails();
  }
  /// The details window adds its content in several turns of the event loop.
  static void waitForDetails() {
    waitUntil([] { return !window<DetailsWindow>() || window<DetailsWindow>()->isComplete(); });
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
    return {.findIncidents =
                [this](std::vector<std::uint64_t> muids, const DetailsServices::IncidentsFound& found) {
                  askedIncidents_ = std::move(muids);
                  found_ = found;
                },
            .openLink =
                [this](const QUrl& url) {
                  openedLinks_.append(url.toString());
                  return linksOpen_;
                }};
  }
  FavoritesServices favoritesServices() {
    return {.favorites = [this]() -> Outcome<std::vector<StoredFavorite>> {
              if (!whyUnreadable_.empty()) return failure("state database", "", whyUnreadable_);
              return stored_;
            },
            .change = [this](const StoredFavorite& favorite, bool isAdded) -> Outcome<bool> {
              if (isReadOnly_) return failure("state database", "", "it may only be read");
              std::erase_if(stored_, [&](const StoredFavorite& other) { return other.isSameAs(favorite); });
              if (isAdded) stored_.push_back(favorite);
              return true;
            },
            .choose = [this](const StoredFavorite& favorite) -> Outcome<bool> {
              if (isReadOnly_) return failure("state database", "", "it may only be read");
              const auto stored = std::ranges::find_if(
                  stored_, [&](const StoredFavorite& other) { return other.isSameAs(favorite); });
              return std::exchange(*stored, favorite) != favorite;
            },
            .reorder = [this](const std::vector<StoredFavorite>& order) -> Outcome<bool> {
              if (isReadOnly_) return failure("state database", "", "it may only be read");
              return std::exchange(stored_, order) != order;
            },
            .loadStops =
                [this](const StoredFavorite&, const std::function<void(const Outcome<LineStops>&)>& done) {
                  stopsRead_ = done;
                },
            .loadLines = [this](const std::function<void(const FeedLines&)>& done) { linesLoaded_ = done; },
            .didChange = [this] { ++changes_; }};
  }
  FavoriteList& openFavorites() {
    companion_->showFavorites();
    linesLoaded_({.indexes = {cityLines()}, .error = linesError_});
    settle();
    return *window<FavoritesWindow>()->findChild<FavoriteList*>();
  }
  static void type(const QString& text) {
    window<FavoritesWindow>()->findChild<QLineEdit*>()->setText(text);
    settle();
  }
  /// The rows' texts, a star after those of favourites; headings without the star.
  static QStringList rowsOf(const FavoriteList& list) {
    QStringList rows;
    for (int row = 0; row < list.model()->rowCount(); ++row) {
      const QModelIndex index = list.model()->index(row, 0);
      const bool isFavorite = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
      rows.append(index.data().toString() + (isFavorite ? QStringLiteral(" *") : QString()));
    }
    return rows;
  }
  static void makeCurrent(FavoriteList& list, int row) { list.setCurrentIndex(list.model()->index(row, 0)); }

  std::unique_ptr<Companion> companion_;
  std::vector<std::uint64_t> askedIncidents_;
  DetailsServices::IncidentsFound found_;
  bool linksOpen_ = true;
  QStringList openedLinks_;
  std::vector<StoredFavorite> stored_;
  std::function<void(const FeedLines&)> linesLoaded_;
  std::function<void(const Outcome<LineStops>&)> stopsRead_;
  std::optional<Error> linesError_;
  bool isReadOnly_ = false;
  /// Why the favourites cannot be read; empty if they can.
  std::string whyUnreadable_;
  int changes_ = 0;
};

}  // namespace linewatch::desktop
