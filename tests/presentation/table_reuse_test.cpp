#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/ui/table_view.h"
#include "presentation/row_fixture.h"

namespace linewatch {
namespace {

constexpr double kHeight = 440, kRowHeight = 64;

/// Rows of both kinds of cell, every tenth a summary.
class ManyRows final : public ui::TableViewDataSource, public ui::TableViewDelegate {
 public:
  ManyRows(std::size_t count, std::shared_ptr<ArtworkDataSourceCache> cache)
      : count_(count), cache_(std::move(cache)) {}

  std::size_t tableViewNumberOfRowsInSection(ui::TableView&, std::size_t) override { return count_; }
  double tableViewEstimatedHeightForRowAtIndexPath(ui::TableView&, const ui::IndexPath&) override {
    return 5;
  }
  std::shared_ptr<ui::TableViewCell> tableViewCellForRowAtIndexPath(ui::TableView& table,
                                                                    const ui::IndexPath& path) override {
    return isSummary(path.row) ? summaryCell(table, path) : itemCell(table, path);
  }

  static bool isSummary(std::size_t row) { return row % 10 == 9; }
  static std::string text(std::size_t row) { return "Row " + std::to_string(row); }

 private:
  std::shared_ptr<ui::TableViewCell> itemCell(ui::TableView& table, const ui::IndexPath& path) const {
    auto cell = std::static_pointer_cast<RVTransitItemFixedHeightCell>(
        table.dequeueReusableCell(std::string(RVTransitItemFixedHeightCell::kReuseIdentifier), path));
    const auto artwork = std::make_shared<const RVConfiguredArtwork>(sizedArtwork(57, cache_), 1.0);
    cell->setTransitItem(std::make_shared<const RVTransitItem>(text(path.row), std::nullopt, artwork,
                                                               path.row % 2 == 0, nullptr));
    cell->setTrailingArtworkColumnWidth(89);
    cell->setRowHeight(kRowHeight);
    return cell;
  }
  std::shared_ptr<ui::TableViewCell> summaryCell(ui::TableView& table, const ui::IndexPath& path) const {
    auto cell = std::static_pointer_cast<RVTransitSummaryCell>(
        table.dequeueReusableCell(std::string(RVTransitSummaryCell::kReuseIdentifier), path));
    cell->setArtworkCache(cache_);
    cell->setItem(std::make_shared<const RVTransitSummaryItem>(
        text(path.row), TransitArtworks(1 + path.row % 7, shieldOfWidth(20)), nullptr));
    cell->setRowHeight(kRowHeight);
    return cell;
  }

  std::size_t count_;
  std::shared_ptr<ArtworkDataSourceCache> cache_;
};

class TableOfCells : public Row {
 protected:
  void showRows(std::size_t count) {
    rows_ = std::make_shared<ManyRows>(count, cache_);
    table_->registerCell(std::string(RVTransitItemFixedHeightCell::kReuseIdentifier),
                         RVTransitItemFixedHeightCell::make);
    table_->registerCell(std::string(RVTransitSummaryCell::kReuseIdentifier), RVTransitSummaryCell::make);
    table_->setDataSource(rows_);
    table_->setDelegate(rows_);
    table_->layoutIfNeeded();
  }
  /// The cells in sight show their own rows, and nothing of those that they showed before.
  void expectRowsInSight() {
    const auto paths = table_->indexPathsForVisibleRows();
    ASSERT_FALSE(paths.empty());
    for (const ui::IndexPath& path : paths) {
      const auto cell = std::dynamic_pointer_cast<FixedHeightCell>(table_->cellForRow(path));
      ASSERT_TRUE(cell);
      EXPECT_EQ(cell->primaryLabel()->text(), ManyRows::text(path.row));
      EXPECT_EQ(cell->frame().height, kRowHeight);
      if (ManyRows::isSummary(path.row)) continue;
      const bool withArtwork = path.row % 2 == 0;
      EXPECT_EQ(rectOf(*cell, "stackView")->maxX(), kWidth - 16 - (withArtwork ? 89 : 0)) << path.row;
    }
  }

  std::shared_ptr<ui::TableView> table_ = std::make_shared<ui::TableView>(ui::Rect{0, 0, kWidth, kHeight});
  std::shared_ptr<ManyRows> rows_;
};

TEST_F(TableOfCells, MakesNoMoreCellsThanFitPlusAFewForTenThousandRows) {
  showRows(10'000);
  expectRowsInSight();
  for (double offset = 0; offset < 9000 * 5; offset += 97) {
    table_->setContentOffset(offset);
    table_->layoutIfNeeded();
  }
  expectRowsInSight();
  // Heights are estimates until a row was in sight, so that the end moves away at first.
  for (int i = 0; i < 80; ++i) {
    table_->setContentOffset(1e9);
    table_->layoutIfNeeded();
  }
  expectRowsInSight();
  EXPECT_EQ(table_->indexPathsForVisibleRows().back().row, 9999U);
  // 7 to 8 rows are in sight, and up to 2 of either kind come in while others go out.
  EXPECT_LE(table_->cellsMade(), 14U);
  EXPECT_TRUE(platform_->transcript().logTexts("error").empty());
}

TEST_F(TableOfCells, RowsInSightFollowTheTextSizeAndTheWidth) {
  showRows(20);
  setTextSize(ui::TextSizeCategory::XS);
  table_->layoutIfNeeded();
  expectRowsInSight();
  const auto first = std::dynamic_pointer_cast<FixedHeightCell>(table_->cellForRow({0, 0}));
  EXPECT_EQ(first->primaryLabel()->font(), first->_primaryFont());
  table_->setFrame({0, 0, 500, kHeight});
  table_->layoutIfNeeded();
  EXPECT_EQ(rectOf(*first, "artworkImageView")->maxX(), 500 - 16);
}

}  // namespace
}  // namespace linewatch
