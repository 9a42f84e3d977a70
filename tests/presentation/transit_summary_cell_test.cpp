#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "presentation/row_fixture.h"
#include "simulation/roles/recording_canvas.h"

namespace linewatch {
namespace {

using Kind = simulation::RecordingCanvas::Kind;
using Drawn = simulation::RecordingCanvas::Drawn;

std::string missing(std::uint64_t count) {
  return "Transit_Incident_Not_Displayed_Incidents(" + std::to_string(count) + ")";
}
/// The width in points of the simulation's text at 15 points.
double textWidth(const std::string& text) { return 7.5 * static_cast<double>(text.size()); }

class SummaryCell : public Row {
 protected:
  SummaryCell() { cell_->setArtworkCache(cache_); }

  static std::shared_ptr<const RVTransitSummaryItem> summary(std::optional<std::string> text,
                                                             std::optional<TransitArtworks> artworks) {
    return std::make_shared<const RVTransitSummaryItem>(std::move(text), std::move(artworks), nullptr);
  }
  static TransitArtworks shields(std::size_t count, double width = 40) {
    TransitArtworks artworks;
    for (std::size_t i = 0; i < count; ++i) artworks.push_back(shieldOfWidth(width, std::to_string(i)));
    return artworks;
  }
  void show(const std::shared_ptr<const RVTransitSummaryItem>& item, double width = kWidth) {
    cell_->setItem(item);
    layOut(*cell_, width);
  }
  ui::TransitInfoLabelView& shieldRow() { return *cell_->artworksLabel(); }
  ui::Rect rect(std::string_view name) const {
    return rectOf(*cell_, name).value_or(ui::Rect{-1, -1, -1, -1});
  }
  std::vector<Drawn> drawn(Kind kind) {
    simulation::RecordingCanvas canvas(cell_->bounds().size());
    cell_->render(canvas);
    std::vector<Drawn> found;
    for (const Drawn& each : canvas.drawn()) {
      if (each.kind == kind) found.push_back(each);
    }
    return found;
  }

  std::shared_ptr<RVTransitSummaryCell> cell_ =
      RVTransitSummaryCell::make(ui::TableViewCellStyle::plain, "summary");
};

TEST_F(SummaryCell, TheBlockRunsFromTheCapitalsToTheBottomOfTheShieldsInTheMiddleOfTheRow) {
  for (const double rowHeight : {110.0, 90.0}) {
    cell_->setRowHeight(rowHeight);
    show(summary("3 lines affected", shields(3)));
    EXPECT_EQ(cell_->frame().height, rowHeight);
    const ui::Rect block = rect("contentGuide");
    EXPECT_EQ(block.x, 16);
    EXPECT_EQ(block.maxX(), kWidth - 16);
    EXPECT_EQ(rect("stackView").width, block.width);
    EXPECT_NEAR(block.y + block.height / 2, rowHeight / 2, 0.5);
    const double first = firstBaseline(*cell_, cell_->primaryLabel());
    EXPECT_NEAR(first - block.y, 12, 0.5);
    EXPECT_NEAR(rect("artworksLabel").y + shieldRow().firstBaselineFromTop().value() - first, 35, 0.5);
    EXPECT_NEAR(block.maxY(), rect("artworksLabel").maxY(), 0.5);
  }
}

TEST_F(SummaryCell, ABlockThatIsTallerThanTheRowStaysInside) {
  cell_->setRowHeight(40);
  show(summary("3 lines affected", shields(3)));
  EXPECT_EQ(cell_->frame().height, 40);
  EXPECT_GE(rect("contentGuide").y, 0);
  EXPECT_LE(rect("contentGuide").maxY(), 40);
}

TEST_F(SummaryCell, FollowsTheTextSizeWithoutScalingItsSpacing) {
  cell_->setRowHeight(250);
  setTextSize(ui::TextSizeCategory::AX2);
  show(summary("3 lines affected", shields(3)));
  const double pointSize = cell_->primaryLabel()->font().pointSize();
  EXPECT_EQ(cell_->primaryLabel()->font(), ui::Font(ui::TextStyle::headline, {}, ui::TextSizeCategory::AX2));
  const double first = firstBaseline(*cell_, cell_->primaryLabel());
  EXPECT_NEAR(first - rect("contentGuide").y, 0.7 * pointSize, 0.5) << "the cap height, not scaled again";
  EXPECT_NEAR(rect("artworksLabel").y + shieldRow().firstBaselineFromTop().value() - first, 35, 0.5);
}

TEST_F(SummaryCell, TheShieldsStandSideBySideInReadingOrder) {
  show(summary("3 lines affected", shields(3)));
  const auto images = drawn(Kind::image);
  ASSERT_EQ(images.size(), 3U);
  for (std::size_t i = 0; i < images.size(); ++i) {
    EXPECT_EQ(images[i].rect.x, 16 + 45 * static_cast<double>(i));
    EXPECT_EQ(images[i].rect.size(), (ui::Size{40, 20}));
  }
  EXPECT_EQ(shieldRow().shownText(), "");

  platform_->changeWorld([](auto& world) { world.layoutDirection = ui::LayoutDirection::rightToLeft; });
  auto mirrored = RVTransitSummaryCell::make(ui::TableViewCellStyle::plain, "summary");
  cell_ = mirrored;
  cell_->setArtworkCache(cache_);
  show(summary("3 lines affected", shields(3)));
  const auto inOrder = drawn(Kind::image);
  ASSERT_EQ(inOrder.size(), 3U);
  for (std::size_t i = 0; i < inOrder.size(); ++i) {
    EXPECT_EQ(inOrder[i].rect.maxX(), kWidth - 16 - 45 * static_cast<double>(i));
  }
}

TEST_F(SummaryCell, CountsTheShieldsThatDoNotFit) {
  // Four shields, four spaces and the text fit exactly.
  const double exact = 4 * 170 + 4 * 5 + textWidth(missing(2)) + 32;
  show(summary("6 lines affected", shields(6, 170)), exact);
  EXPECT_EQ(shieldRow().shownItemCount(), 4U);
  EXPECT_EQ(shieldRow().shownText(), missing(2));
  EXPECT_LE(rect("artworksLabel").maxX(), exact - 16);
  const auto texts = drawn(Kind::text);
  ASSERT_EQ(texts.size(), 2U);
  EXPECT_EQ(texts[1].rect.x, 16 + 4 * 175);
  EXPECT_EQ(texts[1].color, ui::Color(ui::SemanticColor::systemGray).resolved(ui::Appearance::light));

  show(summary("6 lines affected", shields(6, 170)), exact - 1);
  EXPECT_EQ(shieldRow().shownItemCount(), 3U);
  EXPECT_EQ(shieldRow().shownText(), missing(3));
  show(summary("6 lines affected", shields(6, 170)), exact);
  EXPECT_EQ(shieldRow().shownItemCount(), 4U) << "a wider row shows more again";
  show(summary("6 lines affected", shields(5, 170)), exact + 45);
  EXPECT_EQ(shieldRow().shownItemCount(), 5U);
  EXPECT_EQ(shieldRow().shownText(), "");
}

TEST_F(SummaryCell, TheShieldsAreMadeAgainForAnotherDisplayOrDirection) {
  show(summary("6 lines affected", shields(6, 170)));
  EXPECT_FALSE(counted_.shields->scales.contains(3));
  cell_->setDisplayScale(3);
  layOut(*cell_);
  EXPECT_TRUE(counted_.shields->scales.contains(3));

  int texts = 0;
  shieldRow().setTruncationText([&](std::uint64_t count) {
    ++texts;
    return missing(count);
  });
  layOut(*cell_);
  const int before = std::exchange(texts, 0);
  cell_->setLayoutDirection(ui::LayoutDirection::rightToLeft);
  layOut(*cell_);
  EXPECT_EQ(texts, before) << "the text is mirrored too";
}

TEST_F(SummaryCell, IsLaidOutBeforeItIsMeasured) {
  cell_->setFrame({0, 0, kWidth, 110});
  cell_->setItem(summary("20 lines affected", shields(20)));
  cell_->systemLayoutSizeFittingSize({kWidth, 0}, ui::kRequiredPriority, ui::kFittingSizePriority);
  EXPECT_LT(shieldRow().shownItemCount(), 20U) << "limited to the width of the first layout";
}

TEST_F(SummaryCell, ShowsAllShieldsWhereTheyFitWithoutTheText) {
  const double exact = 6 * 40 + 5 * 5 + 32;
  show(summary("6 lines affected", shields(6)), exact);
  EXPECT_EQ(shieldRow().shownItemCount(), 6U);
  show(summary("6 lines affected", shields(6)), exact - 0.5);
  EXPECT_LT(shieldRow().shownItemCount(), 6U);
}

TEST_F(SummaryCell, InANarrowRowTheTextStandsAloneAndIsCutOff) {
  show(summary("6 lines affected", shields(6)), 100);
  EXPECT_EQ(shieldRow().shownItemCount(), 0U);
  EXPECT_EQ(shieldRow().shownText(), missing(6));
  const auto texts = drawn(Kind::text);
  ASSERT_EQ(texts.size(), 2U);
  EXPECT_TRUE(texts[1].truncated);
  EXPECT_LE(texts[1].rect.maxX(), 84);
}

TEST_F(SummaryCell, WithoutArtworksOnlyTheTextIsShownAndTheRowKeepsItsMiddle) {
  for (const auto& none :
       {std::optional<TransitArtworks>(), std::optional<TransitArtworks>(TransitArtworks{})}) {
    show(summary("Some text", none));
    EXPECT_FALSE(rectOf(*cell_, "artworksLabel"));
    const ui::Rect block = rect("contentGuide");
    EXPECT_NEAR(block.maxY(), rect("primaryLabel").maxY(), 0.5);
    EXPECT_NEAR(block.y + block.height / 2, 55, 0.5);
    show(summary("Some text", shields(1)));
    EXPECT_TRUE(rectOf(*cell_, "artworksLabel"));
  }
}

TEST_F(SummaryCell, TheTextIsOneLine) {
  show(summary(std::string(100'000, 'x'), shields(2)));
  EXPECT_EQ(cell_->primaryLabel()->displayedLayout()->lines.size(), 1U);
  EXPECT_TRUE(cell_->primaryLabel()->displayedLayout()->lines[0].truncated);
  EXPECT_EQ(cell_->frame().height, 110);
}

TEST_F(SummaryCell, AnEqualItemChangesNothingAndNoItemShowsNothing) {
  cell_->setItem(nullptr);
  show(summary("Text", shields(2)));
  const auto shown = cell_->item();
  cell_->primaryLabel()->setText("left alone");
  cell_->setItem(summary("Text", shields(2)));
  EXPECT_EQ(cell_->item(), shown);
  EXPECT_EQ(cell_->primaryLabel()->text(), "left alone");
  show(nullptr);
  EXPECT_EQ(cell_->primaryLabel()->text(), "");
  EXPECT_TRUE(shieldRow().isHidden());
}

TEST_F(SummaryCell, DrawsOnlyTheShieldsThatFit) {
  const std::size_t before = counted_.shields->drawn;
  show(summary("10000 lines affected", shields(10'000, 1)), 800);
  EXPECT_LT(counted_.shields->drawn - before, 1000U);
  EXPECT_GT(shieldRow().shownItemCount(), 0U);
  EXPECT_EQ(shieldRow().shownText(), missing(10'000 - shieldRow().shownItemCount()));
  show(summary("All of nothing", TransitArtworks(10'000, shieldOfWidth(0))));
  show(summary("Null", TransitArtworks(3)));
  EXPECT_EQ(shieldRow().shownItemCount(), 3U) << "an item without an image keeps its place";
}

TEST_F(SummaryCell, SurvivesNumbersOfAnySize) {
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN(),
                   kInfinity = std::numeric_limits<double>::infinity();
  for (const double bad : {kNaN, -50.0, kInfinity, -kInfinity, 1e300}) {
    show(summary("Bad " + std::to_string(bad), shields(6, bad)));
    show(summary("Text", shields(6)), bad);
    cell_->setRowHeight(bad);
    layOut(*cell_);
    cell_->setRowHeight(110);
    for (const NamedRect& part : cell_->namedRects()) {
      EXPECT_FALSE(part.rect.width < 0 || part.rect.height < 0) << part.name;
      EXPECT_FALSE(part.rect.x != part.rect.x || part.rect.y != part.rect.y) << part.name;
    }
  }
  show(summary("Text", shields(2)));
  EXPECT_EQ(cell_->frame().height, 110);
  EXPECT_EQ(shieldRow().shownItemCount(), 2U);
}

TEST_F(SummaryCell, IconsHaveTheirOwnSizeAndNothingIsShownWithoutACache) {
  TransitArtworkDataSource icon;
  icon.artworkSourceType = kArtworkSourceIcon;
  icon.iconDataSource = IconDataSource{};
  show(summary("Text",
               TransitArtworks{std::make_shared<const TransitArtworkDataSource>(icon), shieldOfWidth(40)}));
  ASSERT_EQ(drawn(Kind::image).size(), 2U);
  EXPECT_EQ(drawn(Kind::image)[0].rect.size(), (ui::Size{20, 20}));
  shieldRow().setIconSize(7);
  layOut(*cell_);
  const auto images = drawn(Kind::image);
  EXPECT_EQ(images[0].rect.size(), (ui::Size{30, 30}));
  EXPECT_EQ(images[1].rect.size(), (ui::Size{40, 20}));
  EXPECT_EQ(images[0].rect.y + 15, images[1].rect.y + 10) << "centred on one line";
  cell_->setArtworkCache(nullptr);
  layOut(*cell_);
  EXPECT_TRUE(drawn(Kind::image).empty());
}

}  // namespace
}  // namespace linewatch
