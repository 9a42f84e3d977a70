#include "presentation/transit_incident_data_source.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "list/transit_item_data_source_builder.h"
#include "presentation/memory_constrained_artwork_cache.h"
#include "presentation/transit_item_fixed_height_cell.h"
#include "presentation/transit_summary_cell.h"
#include "simulation/platform_test.h"
#include "simulation/world/world_records.h"

namespace linewatch {
namespace {

using simulation::World;
using testing::ElementsAre;
using testing::IsEmpty;

class Listener : public RVTransitIncidentDataSourceDelegate {
 public:
  void dataSourceDidUpdateContent(RVTransitIncidentDataSource& dataSource) override {
    ++updates;
    columnWidth = dataSource.artworkColumnWidth();
  }
  void dataSourceDidSelectOpenableItem(RVTransitIncidentDataSource&,
                                       const std::shared_ptr<const RVOpenable>& item,
                                       const ui::IndexPath& atIndexPath) override {
    opened.push_back(item);
    rows.push_back(atIndexPath.row);
    if (table) wasSelected = wasSelected || table->indexPathForSelectedRow().has_value();
  }

  std::shared_ptr<ui::TableView> table;
  /// Whether a row was still selected when it was reported.
  bool wasSelected = false;

  int updates = 0;
  double columnWidth = 0;
  std::vector<std::shared_ptr<const RVOpenable>> opened;
  std::vector<std::size_t> rows;
};

/// Lines A to C with one incident each, D without incidents. All shields have the given width at size 3.
World city(double widthOfShields = 40) {
  World world;
  for (const char* name : {"A", "B", "C", "D"}) {
    auto& line = world.lines[name] = {.muid = world.lines.size() + 1, .name = name};
    line.alternateArtwork.emplace().shieldDataSource = ShieldDataSource{.shieldText = name};
    line.alternateArtwork->intrinsicWidth = widthOfShields;
  }
  for (const char* name : {"A", "B", "C"}) {
    world.incidents[name] = {.muid = world.incidents.size() + 11, .title = name};
    world.lines[name].incidents = {name};
  }
  return world;
}

/// The city with the incident of line A only.
World quietCity(double widthOfShields = 40) {
  World world = city(widthOfShields);
  world.lines["B"].incidents = {};
  world.lines["C"].incidents = {};
  return world;
}

class TransitIncidentDataSource : public PlatformTest {
 protected:
  static std::shared_ptr<RVResult> resultOf(const World& world) {
    return std::make_shared<RVResult>(
        std::make_shared<const TransitLineItems>(simulation::WorldRecords(world).allLines()));
  }
  static std::shared_ptr<RVResult> failure() { return std::make_shared<RVResult>(Error{"Transit", 7, {}}); }
  static std::shared_ptr<RVResult> neither() { return std::make_shared<RVResult>(nullptr, std::nullopt); }

  void make(std::shared_ptr<RVResult> result, bool expanded = false, double width = 359) {
    dataSource_ = std::make_shared<RVTransitIncidentDataSource>(
        std::move(result), expanded, memoryConstrainedImageViewCache(), kNoRowLimit, width);
    table_ = std::make_shared<ui::TableView>(ui::Rect{0, 0, width, 1000});
    dataSource_->configureTableView(*table_);
    listener_ = std::make_shared<Listener>();
    dataSource_->setDelegate(listener_);
  }
  int updatesBy(const std::function<void()>& change) {
    const int before = listener_->updates;
    change();
    return listener_->updates - before;
  }
  std::vector<ui::SeparatorStyle> separators() {
    table_->layoutIfNeeded();
    std::vector<ui::SeparatorStyle> styles;
    for (std::size_t row = 0; row < table_->numberOfRowsInSection(0); ++row) {
      styles.push_back(table_->cellForRow({0, row})->separatorStyle());
    }
    return styles;
  }
  template <class Cell>
  std::shared_ptr<Cell> shownCell(std::size_t row) {
    table_->layoutIfNeeded();
    return std::dynamic_pointer_cast<Cell>(table_->cellForRow({0, row}));
  }
  static std::int64_t sizeOfArtwork(const SharedTransitItem& item) {
    return std::dynamic_pointer_cast<const SizedTransitArtwork>(item->artwork()->artworkSource())
        ->shieldSize();
  }

  std::shared_ptr<RVTransitIncidentDataSource> dataSource_;
  std::shared_ptr<ui::TableView> table_;
  std::shared_ptr<Listener> listener_;
};

TEST_F(TransitIncidentDataSource, WithoutAResultShowsTheListWithoutFavourites) {
  make(nullptr);
  EXPECT_EQ(dataSource_->rowHeight(), 110);
  ASSERT_NE(dataSource_->transitLineItemResult()->successObject(), nullptr);
  const auto cell = shownCell<RVTransitItemFixedHeightCell>(0);
  ASSERT_NE(cell, nullptr);
  EXPECT_EQ(cell->transitItem()->primaryText(), "LineWatch_NoFavorite_Title");
  EXPECT_EQ(dataSource_->artworkColumnWidth(), 73);
}

TEST_F(TransitIncidentDataSource, ShowsTheSummaryWhenCompactAndARowAnItemWhenExpanded) {
  using enum ui::SeparatorStyle;
  make(resultOf(city()));
  EXPECT_THAT(separators(), ElementsAre(none));
  const auto summary = shownCell<RVTransitSummaryCell>(0);
  ASSERT_NE(summary, nullptr);
  EXPECT_EQ(summary->rowHeight(), 110);
  EXPECT_EQ(summary->artworkCache(), dataSource_->artworkCache());
  EXPECT_EQ(dataSource_->preferredContentSizeForExpanded(true, {359, 50}), (Size{359, 110}));
  EXPECT_EQ(dataSource_->_itemAtIndexPath({0, 7}), dataSource_->_itemAtIndexPath({0, 0}))
      << "every row gives the summary";

  dataSource_->setExpanded(true);
  table_->reloadData();
  EXPECT_THAT(separators(), ElementsAre(singleLine, singleLine, singleLine, none));
  const auto row = shownCell<RVTransitItemFixedHeightCell>(1);
  ASSERT_NE(row, nullptr);
  EXPECT_EQ(row->transitItem(), dataSource_->shieldAdjustedExpandedItems()[1]);
  EXPECT_EQ(row->trailingArtworkColumnWidth(), dataSource_->artworkColumnWidth());
  dataSource_->setRowHeight(64, kNoRowLimit);
  table_->reloadData();
  EXPECT_EQ(shownCell<RVTransitItemFixedHeightCell>(1)->rowHeight(), 64);
  EXPECT_EQ(table_->rectForRow({0, 3}).y, 3 * 64);
  dataSource_->setRowHeight(110, kNoRowLimit);
  EXPECT_EQ(dataSource_->preferredContentSizeForExpanded(false, {300, 50}), (Size{300, 440}));
}

TEST_F(TransitIncidentDataSource, VisibleRowsFollowTheTextSizeAndTheWidth) {
  make(resultOf(city()), true);
  const auto row = shownCell<RVTransitItemFixedHeightCell>(0);
  platform_->changeWorld([](World& world) { world.textSize = ui::TextSizeCategory::XS; });
  EXPECT_EQ(shownCell<RVTransitItemFixedHeightCell>(0), row);
  EXPECT_EQ(row->primaryLabel()->font(), row->_primaryFont());
  table_->setFrame({0, 0, 500, 1000});
  EXPECT_EQ(shownCell<RVTransitItemFixedHeightCell>(0), row);
  const auto rects = row->namedRects();
  const auto artwork = std::ranges::find(rects, "artworkImageView", &NamedRect::name);
  ASSERT_NE(artwork, rects.end());
  EXPECT_EQ(artwork->rect.maxX(), 500 - 16);
}

TEST_F(TransitIncidentDataSource, ATableThatIsNotConfiguredGetsTheSameCells) {
  make(resultOf(city()));
  ui::TableView table;
  for (const bool expanded : {false, true}) {
    dataSource_->setExpanded(expanded);
    const auto cell = dataSource_->tableViewCellForRowAtIndexPath(table, {0, 0});
    const auto summary = std::dynamic_pointer_cast<RVTransitSummaryCell>(cell);
    const auto row = std::dynamic_pointer_cast<RVTransitItemFixedHeightCell>(cell);
    EXPECT_EQ(expanded, row != nullptr);
    EXPECT_EQ(!expanded, summary != nullptr);
    if (row) {
      EXPECT_EQ(row->transitItem(), dataSource_->shieldAdjustedExpandedItems()[0]);
    }
  }
}

TEST_F(TransitIncidentDataSource, RowsBeyondTheItemsGetAPlainCell) {
  make(resultOf(city()), true);
  for (const ui::IndexPath& place : {ui::IndexPath{0, 4}, ui::IndexPath{1, 0}}) {
    const auto cell = dataSource_->tableViewCellForRowAtIndexPath(*table_, place);
    EXPECT_EQ(cell->reuseIdentifier(), "TableViewCell");
    EXPECT_FALSE(dataSource_->tableViewShouldHighlightRowAtIndexPath(*table_, place));
    dataSource_->tableViewDidSelectRowAtIndexPath(*table_, place);
  }
  EXPECT_THAT(listener_->opened, IsEmpty());
  EXPECT_EQ(dataSource_->numberOfSectionsInTableView(*table_), 1U);
  EXPECT_EQ(dataSource_->tableViewNumberOfRowsInSection(*table_, 7), 4U);
}

TEST_F(TransitIncidentDataSource, RefusesToExpandAListWithoutExpandedItems) {
  const auto complaints = [&] { return platform_->transcript().logTexts("error"); };
  make(failure(), true);
  EXPECT_FALSE(dataSource_->isExpanded());
  ASSERT_EQ(complaints().size(), 1U);
  EXPECT_THAT(
      complaints()[0],
      testing::StartsWith(
          "Trying to set expanded state on widget datasource without expanded items to show, ignoring "
          "request to expand datasource state.\nListItem: <RVTransitListItem"));
  EXPECT_EQ(updatesBy([&] { dataSource_->setExpanded(true); }), 1) << "told although nothing has changed";
  EXPECT_FALSE(dataSource_->isExpanded());

  make(neither(), true);
  EXPECT_EQ(dataSource_->listItem(), nullptr);
  EXPECT_EQ(dataSource_->tableViewNumberOfRowsInSection(*table_, 0), 0U);
  EXPECT_THAT(complaints().back(), testing::EndsWith("\nListItem: (null)"));

  make(resultOf(city()), true);
  EXPECT_TRUE(dataSource_->isExpanded());
  EXPECT_EQ(updatesBy([&] { dataSource_->setListItem(nullptr); }), 1);
  EXPECT_TRUE(dataSource_->isExpanded()) << "a list change does not check the state again";
  EXPECT_EQ(complaints().size(), 3U);
}

TEST_F(TransitIncidentDataSource, TellsTheDelegateOncePerChange) {
  make(resultOf(city()));
  const auto held = dataSource_->transitLineItemResult();
  using Source = RVTransitIncidentDataSource;
  struct Row {
    const char* name;
    std::function<void(Source&)> change;
    int updates;
  };
  const auto takes = [](std::shared_ptr<RVResult> result) {
    return [result](Source& source) { source.updateTransitLineItemResult(result, nullptr); };
  };
  const auto isAsHighAs = [](double height, std::uint64_t limit) {
    return [=](Source& source) { source.setRowHeight(height, limit); };
  };
  for (const Row& row : {
           Row{"the same state", [](Source& source) { source.setExpanded(false); }, 0},
           Row{"the other state", [](Source& source) { source.setExpanded(true); }, 1},
           Row{"the same height and limit", isAsHighAs(110, kNoRowLimit), 0},
           Row{"another height", isAsHighAs(90, kNoRowLimit), 1},
           Row{"a limit that limits nothing, and another height", isAsHighAs(80, 9), 0},
           Row{"a limit that folds rows", isAsHighAs(80, 2), 1},
           Row{"the same result", takes(held), 0},
           Row{"another result of the same list", takes(resultOf(city())), 0},
           Row{"another list", takes(resultOf(quietCity())), 1},
           Row{"the same list again",
               [](Source& source) { source.recalculateDataSourceItemsWithAnalytics({}); }, 0},
           Row{"an error", takes(failure()), 1},
           Row{"another error, the same row", takes(failure()), 0},
           Row{"neither list nor error", takes(neither()), 1},
           Row{"the same width", [](Source& source) { source.setAvailableWidth(359); }, 0},
       }) {
    EXPECT_EQ(updatesBy([&] { row.change(*dataSource_); }), row.updates) << row.name;
  }
}

TEST_F(TransitIncidentDataSource, RecordsOnlyResultsAndRebuildsInAnalytics) {
  make(resultOf(city()));
  const auto controller = platform_->makeViewController();
  const auto analytics = std::make_shared<RVTransitIncidentsAnalyticsDelegate>(controller);
  analytics->startSessionIfNeeded();
  const auto recordedCount = [&] { return analytics->analyticsData()->transitIncidents.size(); };
  dataSource_->updateTransitLineItemResult(dataSource_->transitLineItemResult(), analytics);
  EXPECT_EQ(recordedCount(), 0U) << "the result that it already holds";
  dataSource_->updateTransitLineItemResult(resultOf(city()), analytics);
  EXPECT_EQ(recordedCount(), 3U) << "also when the list is the same";
  dataSource_->setRowHeight(64, 2);
  EXPECT_EQ(recordedCount(), 3U);
  dataSource_->recalculateDataSourceItemsWithAnalytics(analytics);
  EXPECT_EQ(recordedCount(), 6U);
  EXPECT_EQ(listener_->updates, 1) << "of the limit only";
}

TEST_F(TransitIncidentDataSource, AResizedItemKeepsEverythingButItsArtworksSize) {
  make(resultOf(quietCity(300)));
  const auto row = [&](double alpha, bool displayArtwork) {
    const auto artwork = std::get<SharedTransitItem>(dataSource_->listItem()->summaryItem())->artwork();
    return std::make_shared<const RVTransitItem>(
        "Delays", "Wait", std::make_shared<const RVConfiguredArtwork>(artwork->artworkSource(), alpha),
        displayArtwork, nullptr);
  };
  const SharedTransitItem first = row(0.25, false);
  const SharedTransitItem second = row(0.75, true);
  dataSource_->setListItem(
      std::make_shared<const RVTransitListItem>(SummaryItem(first), TransitItems{second}));
  const auto summary = std::get<SharedTransitItem>(dataSource_->shieldAjustedSummaryItem());
  const SharedTransitItem& expanded = dataSource_->shieldAdjustedExpandedItems().front();
  EXPECT_LT(sizeOfArtwork(summary), sizeOfArtwork(first));
  EXPECT_LT(sizeOfArtwork(expanded), sizeOfArtwork(second));
  EXPECT_EQ(summary->artwork()->alpha(), 0.25);
  EXPECT_EQ(expanded->artwork()->alpha(), 0.75);
  EXPECT_FALSE(summary->displayArtwork());
  EXPECT_TRUE(expanded->displayArtwork());
  EXPECT_EQ(expanded->primaryText(), "Delays");
  EXPECT_EQ(expanded->secondaryText(), "Wait");
}

TEST_F(TransitIncidentDataSource, TheColumnLeaves214PointsToTheText) {
  // A shield of 120 points and its inset fit exactly into 350 - 214.
  make(resultOf(quietCity(120)), false, 350);
  EXPECT_EQ(dataSource_->artworkColumnWidth(), 136);
  make(resultOf(quietCity(120)), false, 349.5);
  EXPECT_LT(dataSource_->artworkColumnWidth(), 135.5);
}

TEST_F(TransitIncidentDataSource, NotifiesOfAWidthThatChangesTheRows) {
  make(resultOf(quietCity(100)));
  EXPECT_EQ(dataSource_->artworkColumnWidth(), 116) << "the shield and the inset";
  EXPECT_EQ(updatesBy([&] { dataSource_->setAvailableWidth(400); }), 0) << "there is room for more";
  EXPECT_EQ(updatesBy([&] { dataSource_->setAvailableWidth(320); }), 1);
  EXPECT_LE(dataSource_->artworkColumnWidth(), 320 - 214);
  const auto shrunk = std::get<SharedTransitItem>(dataSource_->shieldAjustedSummaryItem());
  const auto original = std::get<SharedTransitItem>(dataSource_->listItem()->summaryItem());
  EXPECT_EQ(sizeOfArtwork(original), 3);
  EXPECT_LT(sizeOfArtwork(shrunk), 3);
  EXPECT_EQ(shrunk->primaryText(), original->primaryText());
  EXPECT_EQ(shrunk->openable(), original->openable());
  EXPECT_EQ(shrunk->displayArtwork(), original->displayArtwork());
  EXPECT_EQ(shrunk->artwork()->alpha(), original->artwork()->alpha());
  EXPECT_EQ(updatesBy([&] { dataSource_->setAvailableWidth(0); }), 1) << "the narrowest column";
  EXPECT_EQ(dataSource_->artworkColumnWidth(), 73);
  EXPECT_EQ(updatesBy([&] { dataSource_->setAvailableWidth(-5); }), 0);
  dataSource_->setAvailableWidth(std::numeric_limits<double>::quiet_NaN());
  EXPECT_EQ(dataSource_->artworkColumnWidth(), 73);
}

TEST_F(TransitIncidentDataSource, NotifiesOfANewColumnWidthEvenIfNoShieldChanges) {
  make(resultOf(quietCity(1000)));
  const SummaryItem before = dataSource_->shieldAjustedSummaryItem();
  EXPECT_EQ(dataSource_->artworkColumnWidth(), 141) << "the smallest size just fits";
  EXPECT_EQ(updatesBy([&] { dataSource_->setAvailableWidth(320); }), 1);
  EXPECT_EQ(dataSource_->artworkColumnWidth(), 73) << "here it does not count";
  EXPECT_TRUE(*std::get<SharedTransitItem>(dataSource_->shieldAjustedSummaryItem()) ==
              *std::get<SharedTransitItem>(before));
}

TEST_F(TransitIncidentDataSource, AnItemSummaryDecidesTheColumnOfTheExpandedRows) {
  make(resultOf(quietCity()));
  const SummaryItem narrow = dataSource_->listItem()->summaryItem();
  make(resultOf(city(200)), true, 1000);
  EXPECT_EQ(dataSource_->artworkColumnWidth(), 216) << "a summary of several incidents does not count";
  dataSource_->setListItem(
      std::make_shared<const RVTransitListItem>(narrow, dataSource_->listItem()->expandedItems()));
  EXPECT_EQ(dataSource_->artworkColumnWidth(), 73);
  EXPECT_EQ(listener_->columnWidth, 73) << "already set when the delegate is told";

  // The rows' shields need 216 of the 250 points of one width, and are made smaller for the other.
  EXPECT_EQ(updatesBy([&] { dataSource_->setAvailableWidth(464); }), 0);
  EXPECT_EQ(updatesBy([&] { dataSource_->setAvailableWidth(359); }), 1) << "only the rows look different";
  dataSource_->setExpanded(false);
  EXPECT_EQ(updatesBy([&] { dataSource_->setAvailableWidth(464); }), 0) << "the rows are not visible now";
}

TEST_F(TransitIncidentDataSource, ATapDeselectsTheRowAndReportsItsOpenable) {
  make(resultOf(city()), true);
  listener_->table = table_;
  EXPECT_TRUE(table_->tapRow({0, 1}));
  EXPECT_EQ(table_->indexPathForSelectedRow(), std::nullopt) << "deselected at once";
  EXPECT_FALSE(listener_->wasSelected) << "deselected before it is reported";
  ASSERT_EQ(listener_->opened.size(), 1U);
  EXPECT_EQ(listener_->opened[0], dataSource_->shieldAdjustedExpandedItems()[1]->openable());
  EXPECT_THAT(listener_->rows, ElementsAre(1U));

  dataSource_->setExpanded(false);
  table_->reloadData();
  EXPECT_TRUE(table_->tapRow({0, 0}));
  EXPECT_NE(std::dynamic_pointer_cast<const RVUserActivityData>(listener_->opened.back()), nullptr);

  dataSource_->updateTransitLineItemResult(failure(), nullptr);
  table_->reloadData();
  EXPECT_FALSE(table_->tapRow({0, 0})) << "the error row opens nothing";
  dataSource_->tableViewDidSelectRowAtIndexPath(*table_, {0, 0});
  EXPECT_EQ(listener_->opened.size(), 2U);
  listener_ = nullptr;
  EXPECT_EQ(dataSource_->delegate(), nullptr) << "not kept alive";
  dataSource_->updateTransitLineItemResult(resultOf(city()), nullptr);
}

TEST_F(TransitIncidentDataSource, ConfiguresTheTableForTheLayoutDirection) {
  make(nullptr);
  EXPECT_EQ(table_->separatorInset(), (ui::EdgeInsets{0, 16, 0, 0}));
  EXPECT_EQ(dataSource_->tableViewEstimatedHeightForRowAtIndexPath(*table_, {0, 0}), 5);
  platform_->changeWorld([](World& world) { world.layoutDirection = ui::LayoutDirection::rightToLeft; });
  make(nullptr);
  EXPECT_EQ(table_->separatorInset(), (ui::EdgeInsets{0, 0, 0, 16}));
}

}  // namespace
}  // namespace linewatch
