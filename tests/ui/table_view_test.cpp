#include "ui/table_view.h"

#include <cmath>
#include <map>
#include <random>
#include <set>

#include <gmock/gmock.h>

#include "simulation/roles/recording_canvas.h"
#include "ui/pointer_tracker.h"
#include "ui/sample_row.h"
#include "ui/ui_fixture.h"

namespace linewatch::ui {

void PrintTo(const IndexPath& path, std::ostream* out) { *out << path.section << "." << path.row; }

namespace {

using simulation::RecordingCanvas;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// Rows of any height, each showing its number.
class Rows final : public TableViewDataSource, public TableViewDelegate {
 public:
  std::size_t numberOfSectionsInTableView(TableView& /*tableView*/) override { return sections.size(); }
  std::size_t tableViewNumberOfRowsInSection(TableView& /*tableView*/, std::size_t section) override {
    return sections[section];
  }
  std::shared_ptr<TableViewCell> tableViewCellForRowAtIndexPath(TableView& table,
                                                                const IndexPath& path) override {
    ++asked;
    const auto cell = std::static_pointer_cast<SampleRow>(table.dequeueReusableCell("row", path));
    cell->primary->setText(std::to_string(path.row));
    cell->height->setConstant(heightOf(path.row));
    cell->setSeparatorStyle(path.row + 1 == sections[path.section] ? SeparatorStyle::none
                                                                   : SeparatorStyle::singleLine);
    return cell;
  }
  double tableViewEstimatedHeightForRowAtIndexPath(TableView& /*table*/, const IndexPath& /*path*/) override {
    return estimate;
  }
  bool tableViewShouldHighlightRowAtIndexPath(TableView& /*tableView*/, const IndexPath& path) override {
    return path.row != 1;
  }
  void tableViewDidSelectRowAtIndexPath(TableView& /*tableView*/, const IndexPath& path) override {
    tapped.push_back(path);
  }

  double heightOf(std::size_t row) const {
    const auto own = heights.find(row);
    return own != heights.end() ? own->second : 110;
  }

  std::vector<std::size_t> sections{0};
  std::map<std::size_t, double> heights;
  double estimate = 5;
  int asked = 0;
  std::vector<IndexPath> tapped;
};

class TableViewTest : public UiTest {
 protected:
  TableViewTest() {
    table_->registerCell("row", [this](TableViewCellStyle style, const std::string& identifier) {
      ++cellsMade_;
      return std::make_shared<SampleRow>(style, identifier);
    });
    root_.addSubview(table_);
    table_->setDataSource(rows_);
    table_->setDelegate(rows_);
  }

  void show(std::vector<std::size_t> sections) {
    rows_->sections = std::move(sections);
    table_->reloadSection(0, RowAnimation::automatic);
    root_.layoutIfNeeded();
  }

  std::string textAt(std::size_t row) {
    const auto cell = table_->cellForRow({0, row});
    return cell ? std::static_pointer_cast<SampleRow>(cell)->primary->text() : "none";
  }

  // The visible rows show the right content without gaps and fill the table.
  void expectConsistent() {
    const auto visible = table_->indexPathsForVisibleRows();
    double y = visible.empty() ? 0 : table_->cellForRow(visible.front())->frame().y;
    EXPECT_LE(y, 0);
    for (const IndexPath& path : visible) {
      const auto cell = table_->cellForRow(path);
      EXPECT_EQ(textAt(path.row), std::to_string(path.row));
      EXPECT_NEAR(cell->frame().y, y, 1e-6);
      EXPECT_EQ(cell->frame().height, rows_->heightOf(path.row));
      y += cell->frame().height;
    }
    EXPECT_GE(y, std::min(table_->frame().height, table_->contentHeight()) - 1e-6);
  }

  View root_{{0, 0, 359, 440}};
  std::shared_ptr<TableView> table_ = std::make_shared<TableView>(Rect{0, 0, 359, 440});
  std::shared_ptr<Rows> rows_ = std::make_shared<Rows>();
  std::size_t cellsMade_ = 0;
};

TEST_F(TableViewTest, TenThousandRowsNeedNoMoreCellsThanFit) {
  show({10000});
  EXPECT_EQ(cellsMade_, 4U) << "an estimate of 5 points makes no cells for invisible rows";
  EXPECT_EQ(rows_->asked, 4);
  for (int i = 0; i < 2000; ++i) {
    table_->handleScroll(i < 1500 ? 70 : -90);
    root_.layoutIfNeeded();
  }
  expectConsistent();
  for (const double offset : {0.0, 1e9, 25000.0, -4.0}) {
    table_->setContentOffset(offset);
    root_.layoutIfNeeded();
    expectConsistent();
  }
  for (int i = 0; i < 50; ++i) show({10000});
  EXPECT_LE(cellsMade_, 4U + 4U);
  EXPECT_LE(table_->subviews().size(), 6U);
}

TEST_F(TableViewTest, AReloadGivesEachRowTheCellThatShowedItBefore) {
  show({4});
  std::vector<std::shared_ptr<TableViewCell>> before;
  for (std::size_t row = 0; row < 4; ++row) before.push_back(table_->cellForRow({0, row}));
  table_->reloadSection(0, RowAnimation::automatic);
  root_.layoutIfNeeded();
  for (std::size_t row = 0; row < 4; ++row) EXPECT_EQ(table_->cellForRow({0, row}), before[row]);
  EXPECT_EQ(cellsMade_, 4U);
}

TEST_F(TableViewTest, AReloadKeepsTheScrollOffsetWithinTheNewContent) {
  show({50});
  while (table_->handleScroll(200)) root_.layoutIfNeeded();
  table_->setContentOffset(2000);
  root_.layoutIfNeeded();
  const auto visible = table_->indexPathsForVisibleRows();
  show({50});
  EXPECT_EQ(table_->contentOffset(), 2000);
  EXPECT_EQ(table_->indexPathsForVisibleRows(), visible);
  expectConsistent();
  show({10});
  EXPECT_EQ(table_->contentOffset(), 10 * 110 - 440) << "the last rows of a shorter list";
  expectConsistent();
  show({1});
  EXPECT_EQ(table_->contentOffset(), 0);
  show({50});
  EXPECT_EQ(table_->contentOffset(), 0);
}

TEST_F(TableViewTest, RandomHeightsAndScrolling) {
  std::mt19937 random(7);
  const auto number = [&](int low, int high) { return std::uniform_int_distribution(low, high)(random); };
  for (std::size_t row = 0; row < 300; ++row) rows_->heights[row] = number(1, 60) * 5;
  rows_->estimate = 44;
  show({300});
  for (int i = 0; i < 300; ++i) {
    if (i % 50 == 49) show({static_cast<std::size_t>(number(0, 300))});
    table_->setContentOffset(table_->contentOffset() + number(-500, 700));
    root_.layoutIfNeeded();
    expectConsistent();
  }
  EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(TableViewTest, RowsStayOnThePixelGridHoweverFinelyTheyAreScrolled) {
  show({10});
  for (int i = 0; i < 10; ++i) {
    table_->handleScroll(0.13);
    root_.layoutIfNeeded();
    const double pixels = 2 * table_->cellForRow({0, 0})->frame().y;
    EXPECT_NEAR(pixels, std::round(pixels), 1e-9);
    expectConsistent();
  }
  EXPECT_EQ(table_->cellForRow({0, 0})->frame().y, -1.5) << "small steps add up";
}

TEST_F(TableViewTest, ACellThatGrowsMovesTheRowsBelow) {
  show({3});
  rows_->heights[0] = 150;
  std::static_pointer_cast<SampleRow>(table_->cellForRow({0, 0}))->height->setConstant(150);
  root_.layoutIfNeeded();
  expectConsistent();
  EXPECT_EQ(table_->rectForRow({0, 1}), (Rect{0, 150, 359, 110}));
  EXPECT_EQ(table_->contentHeight(), 370);
  EXPECT_EQ(table_->rectForRow({0, 3}), Rect{});
  EXPECT_EQ(table_->indexPathForRowAtPoint({5, 149}), (IndexPath{0, 0}));
  EXPECT_EQ(table_->indexPathForRowAtPoint({5, 371}), std::nullopt);
}

TEST_F(TableViewTest, TheSelectionStaysWithItsRowAndReloadsAreReported) {
  std::vector<std::size_t> reloaded;
  table_->setReloadHandler(
      [&](std::size_t section, RowAnimation /*animation*/) { reloaded.push_back(section); });
  show({100});
  EXPECT_THAT(reloaded, ElementsAre(0));
  EXPECT_TRUE(table_->tapRow({0, 2}));
  for (const double offset : {2000.0, 0.0}) {
    table_->setContentOffset(offset);
    root_.layoutIfNeeded();
    for (const IndexPath& path : table_->indexPathsForVisibleRows()) {
      EXPECT_EQ(table_->cellForRow(path)->isSelected(), path.row == 2);
    }
  }
}

TEST_F(TableViewTest, SectionsFollowEachOther) {
  show({2, 0, 3});
  EXPECT_THAT(table_->indexPathsForVisibleRows(),
              ElementsAre(IndexPath{0, 0}, IndexPath{0, 1}, IndexPath{2, 0}, IndexPath{2, 1}));
  EXPECT_EQ(table_->numberOfRowsInSection(2), 3U);
  EXPECT_EQ(table_->numberOfRowsInSection(9), 0U);
  EXPECT_EQ(table_->cellForRow({1, 0}), nullptr);
}

TEST_F(TableViewTest, ATableWithoutDataSourceRowsOrSizeIsEmpty) {
  show({});
  EXPECT_EQ(table_->numberOfSections(), 0U);
  show({0});
  EXPECT_THAT(table_->indexPathsForVisibleRows(), IsEmpty());
  show({5});
  rows_.reset();
  table_->setContentOffset(100);
  root_.layoutIfNeeded();
  EXPECT_FALSE(table_->tapRow({0, 0}));
  table_->reloadData();
  root_.layoutIfNeeded();
  EXPECT_THAT(table_->indexPathsForVisibleRows(), IsEmpty());
  table_->setFrame({});
  root_.layoutIfNeeded();
}

TEST_F(TableViewTest, AnUnknownReuseIdentifierGivesAPlainCellAndIsLogged) {
  const auto cell = table_->dequeueReusableCell("nobody", {0, 0});
  EXPECT_EQ(cell->reuseIdentifier(), "nobody");
  table_->dequeueReusableCell("nobody", {0, 1});
  EXPECT_THAT(errors(), ElementsAre(HasSubstr("nobody")));
}

TEST_F(TableViewTest, APointerHighlightsAndSelects) {
  show({4});
  PointerTracker pointer;
  const auto cell = table_->cellForRow({0, 0});
  EXPECT_TRUE(pointer.handle(root_, PointerPhase::pressed, {50, 40}));
  EXPECT_TRUE(cell->isHighlighted());
  pointer.handle(root_, PointerPhase::moved, {50, 150});
  EXPECT_FALSE(cell->isHighlighted());
  pointer.handle(root_, PointerPhase::moved, {50, 60});
  EXPECT_TRUE(cell->isHighlighted());
  pointer.handle(root_, PointerPhase::released, {50, 60});
  EXPECT_FALSE(cell->isHighlighted());
  EXPECT_TRUE(cell->isSelected());
  EXPECT_THAT(rows_->tapped, ElementsAre(IndexPath{0, 0}));
  table_->deselectRow({0, 0}, true);
  EXPECT_FALSE(cell->isSelected());

  pointer.handle(root_, PointerPhase::pressed, {50, 40});
  show({4});
  pointer.handle(root_, PointerPhase::released, {50, 40});
  EXPECT_THAT(rows_->tapped, SizeIs(1)) << "a reload ends the press";
  EXPECT_FALSE(table_->cellForRow({0, 0})->isHighlighted());

  EXPECT_FALSE(pointer.handle(root_, PointerPhase::pressed, {50, 150})) << "row 1 opens nothing";
  EXPECT_FALSE(table_->tapRow({0, 1}));
  pointer.handle(root_, PointerPhase::pressed, {50, 40});
  pointer.handle(root_, PointerPhase::cancelled, {50, 40});
  pointer.handle(root_, PointerPhase::pressed, {50, 40});
  pointer.handle(root_, PointerPhase::released, {50, 300});
  EXPECT_THAT(rows_->tapped, SizeIs(1));
  EXPECT_FALSE(table_->tapRow({0, 4}));
  EXPECT_FALSE(PointerTracker::scroll(root_, {50, 40}, 100)) << "all rows are visible";
}

TEST_F(TableViewTest, SeparatorsRunBelowTheRowsWithASeparatorStyle) {
  table_->setSeparatorInset({0, 16, 0, 0});
  const auto footer = std::make_shared<View>(Rect{0, 0, 0, 30});
  table_->setTableFooterView(footer);
  show({2});
  EXPECT_EQ(footer->frame(), (Rect{0, 220, 359, 30}));
  RecordingCanvas canvas({359, 440});
  root_.render(canvas);
  EXPECT_TRUE(canvas.isBalanced());
  std::vector<Rect> separators;
  for (const auto& drawn : canvas.drawn()) {
    if (drawn.kind == RecordingCanvas::Kind::rect && drawn.rect.height < 1) separators.push_back(drawn.rect);
  }
  EXPECT_THAT(separators, ElementsAre(Rect{16, 109.5, 343, 0.5}));
}

}  // namespace
}  // namespace linewatch::ui
