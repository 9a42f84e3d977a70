#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "presentation/row_fixture.h"
#include "simulation/roles/recording_canvas.h"
#include "ui/layout/layout_guide.h"

namespace linewatch {
namespace {

constexpr double kHeadlinePoints = 17;

class ItemCell : public Row {
 protected:
  std::shared_ptr<RVTransitItemFixedHeightCell> cell_ =
      RVTransitItemFixedHeightCell::make(ui::TableViewCellStyle::plain, "item");

  void show(const SharedTransitItem& item, double columnWidth = 89, double rowHeight = 110) {
    cell_->setTransitItem(item);
    cell_->setTrailingArtworkColumnWidth(columnWidth);
    cell_->setRowHeight(rowHeight);
    layOut(*cell_);
  }
  ui::Rect rect(std::string_view name) const {
    return rectOf(*cell_, name).value_or(ui::Rect{-1, -1, -1, -1});
  }
  bool isShown(std::string_view name) const { return rectOf(*cell_, name).has_value(); }
};

TEST_F(ItemCell, TheTextEndsAtTheArtworkColumnOrWithoutOneAtTheTrailingEdge) {
  show(nullptr);
  EXPECT_EQ(rect("stackView").maxX(), kWidth - 16 - 89) << "the column exists before the first item";
  show(item("Delays", "Expect to wait"));
  const ui::Rect guide = rect("contentGuide");
  EXPECT_EQ(guide.x, 16);
  EXPECT_EQ(guide.maxX(), kWidth - 16);
  EXPECT_EQ(rect("stackView").x, 16);
  EXPECT_EQ(rect("stackView").maxX(), guide.maxX() - 89);
  EXPECT_EQ(rect("trailingGutterGuide"), (ui::Rect{guide.maxX() - 89, guide.y, 89, guide.height}));
  EXPECT_EQ(rect("artworkImageView").maxX(), kWidth - 16);
  EXPECT_EQ(rect("artworkImageView").size(), (ui::Size{57, 20}));
  EXPECT_EQ(rect("primaryLabel").maxX(), rect("stackView").maxX());

  show(item("Delays", "Expect to wait", false));
  EXPECT_EQ(rect("stackView").maxX(), kWidth - 16);
  EXPECT_FALSE(isShown("artworkImageView"));
  show(item("Delays", "Expect to wait", true));
  EXPECT_EQ(rect("stackView").maxX(), guide.maxX() - 89) << "a reused cell shows both kinds of rows";
  EXPECT_TRUE(isShown("artworkImageView"));
  EXPECT_TRUE(platform_->transcript().logTexts("error").empty());
}

TEST_F(ItemCell, ARightToLeftLayoutIsMirrored) {
  platform_->changeWorld([](auto& world) { world.layoutDirection = ui::LayoutDirection::rightToLeft; });
  show(item("Delays", "Expect to wait"));
  EXPECT_EQ(rect("trailingGutterGuide").x, 16);
  EXPECT_EQ(rect("artworkImageView").x, 16);
  EXPECT_EQ(rect("stackView").x, 16 + 89);
  EXPECT_EQ(rect("primaryLabel").maxX(), kWidth - 16);
}

TEST_F(ItemCell, TheBlockRunsFromTheCapitalsToTheLastBaselineInTheMiddleOfTheRow) {
  EXPECT_EQ(cell_->rowHeight(), 110);
  for (const double rowHeight : {110.0, 64.0}) {
    show(item("Delays", "Expect to wait"), 89, rowHeight);
    EXPECT_EQ(cell_->frame().height, rowHeight);
    EXPECT_EQ(cell_->contentView().frame(), (ui::Rect{0, 0, kWidth, rowHeight}));
    const ui::Rect block = rect("contentGuide");
    const double first = firstBaseline(*cell_, cell_->primaryLabel());
    const double second = firstBaseline(*cell_, cell_->secondaryLabel());
    // 0.7 * 17 on a grid of half points.
    EXPECT_NEAR(first - block.y, 12, 0.5);
    EXPECT_NEAR(second - first, 21, 0.5);
    EXPECT_NEAR(block.maxY(), second, 0.5);
    EXPECT_NEAR(block.y + block.height / 2, rowHeight / 2, 0.5);
    EXPECT_NEAR(rect("artworkImageView").y + 10, rowHeight / 2, 0.5);
  }
}

TEST_F(ItemCell, AnItemWithoutSecondaryTextHidesTheLabel) {
  show(item("Delays", "Expect to wait"));
  EXPECT_TRUE(isShown("secondaryLabel"));
  const ui::Rect before = rect("contentGuide");
  show(item("Delays", std::nullopt));
  EXPECT_FALSE(isShown("secondaryLabel"));
  EXPECT_EQ(cell_->secondaryLabel()->text(), "");
  EXPECT_NEAR(rect("contentGuide").height, before.height, 1);
  show(item("Delays", ""));
  EXPECT_TRUE(isShown("secondaryLabel")) << "an empty text is not an absent one";
}

TEST_F(ItemCell, TextsWrapInTheWidthBesideTheArtwork) {
  const std::string longText(60, 'x');
  show(item(longText, "y"));
  const auto lines = [&] { return cell_->primaryLabel()->displayedLayout()->lines.size(); };
  // 238 points are 28 code points of 8.5.
  EXPECT_EQ(lines(), 3U);
  const double second = firstBaseline(*cell_, cell_->secondaryLabel());
  const ui::Rect primary = rect("primaryLabel");
  EXPECT_NEAR(second, primary.maxY() - 0.2 * kHeadlinePoints + 21, 1) << "measured from the last line";
  show(item(longText, "y", false));
  EXPECT_EQ(lines(), 2U);
}

TEST_F(ItemCell, ShowsAllLinesAsLongAsTheBlockFitsIntoTheRow) {
  // 238 points are 31 code points of 7.5 a line: six lines, and a block of 12 + 21 + 5 * 15 points.
  show(item("Delays", std::string(6 * 31, 'x')));
  EXPECT_EQ(cell_->secondaryLabel()->displayedLayout()->lines.size(), 6U);
  EXPECT_EQ(rect("contentGuide").height, 108);
  show(item("Delays", std::string(6 * 31 + 1, 'x')));
  const auto layout = cell_->secondaryLabel()->displayedLayout();
  EXPECT_TRUE(layout->lines.back().truncated);
  EXPECT_LE(rect("secondaryLabel").maxY(), 110) << "lines of a shortened text are wholly in the row";
}

TEST_F(ItemCell, ALongTitleLeavesALineForTheSecondaryText) {
  const std::string title(600, 'x');
  for (const std::size_t secondaryLines : {1, 4}) {
    for (const double rowHeight : {110.0, 64.0}) {
      SCOPED_TRACE(rowHeight);
      show(item(title, std::string(secondaryLines * 31, 'y')), 89, rowHeight);
      const auto primary = cell_->primaryLabel()->displayedLayout();
      const auto secondary = cell_->secondaryLabel()->displayedLayout();
      ASSERT_EQ(secondary->lines.size(), 1U);
      EXPECT_EQ(secondary->lines.back().truncated, secondaryLines > 1);
      EXPECT_TRUE(primary->lines.back().truncated);
      EXPECT_GE(primary->lines.size(), rowHeight > 100 ? 4U : 2U) << "the title gets all other lines";
      EXPECT_GE(rect("primaryLabel").y, 0);
      EXPECT_LE(rect("secondaryLabel").maxY(), rowHeight);
    }
  }
  for (const auto& noText : {std::optional<std::string>(), std::optional<std::string>("")}) {
    show(item(title, noText));
    EXPECT_EQ(cell_->primaryLabel()->displayedLayout()->lines.size(), 5U) << "no line is kept for no text";
  }
  setTextSize(ui::TextSizeCategory::AX5);
  show(item(title, "y"), 89, 64);
  EXPECT_EQ(cell_->primaryLabel()->displayedLayout()->lines.size(), 1U) << "the title's line comes first";
}

TEST_F(ItemCell, ShowsTheFirstLineAtEveryTextSize) {
  for (const std::string_view name : ui::kTextSizeCategoryNames) {
    SCOPED_TRACE(name);
    setTextSize(ui::textSizeCategoryNamed(name).value());
    show(item("Delays between Central Station and Harbour", "Expect to wait"));
    const auto layout = cell_->primaryLabel()->displayedLayout();
    ASSERT_GE(layout->lines.size(), 1U);
    const ui::Rect label = rect("primaryLabel");
    EXPECT_GE(label.y, 0);
    EXPECT_LE(label.y + layout->firstBaseline(), 110);
    EXPECT_EQ(label.height, layout->size.height) << "no line is cut";
    EXPECT_EQ(cell_->frame().height, 110);
  }
}

TEST_F(ItemCell, FollowsTheTextSize) {
  show(item("Delays", "Expect to wait"), 89, 200);
  EXPECT_EQ(cell_->primaryLabel()->font(), ui::Font(ui::TextStyle::headline, {.bold = true}));
  EXPECT_EQ(cell_->secondaryLabel()->font(), ui::Font(ui::TextStyle::subheadline));
  setTextSize(ui::TextSizeCategory::AX1);
  layOut(*cell_);
  const auto category = ui::TextSizeCategory::AX1;
  const double factor = cell_->primaryLabel()->font().pointSize() / kHeadlinePoints;
  EXPECT_EQ(cell_->primaryLabel()->font(), ui::Font(ui::TextStyle::headline, {.bold = true}, category));
  EXPECT_EQ(cell_->secondaryLabel()->font(), ui::Font(ui::TextStyle::subheadline, {}, category));
  const double first = firstBaseline(*cell_, cell_->primaryLabel());
  EXPECT_NEAR(firstBaseline(*cell_, cell_->secondaryLabel()) - first, 21 * factor, 0.75);
  const double capHeight = cell_->snappedToPixel(0.7 * cell_->primaryLabel()->font().pointSize());
  EXPECT_NEAR(first - rect("contentGuide").y, capHeight * factor, 0.5)
      << "the cap height, scaled with the font";
}

class ItalicCell final : public RVTransitItemFixedHeightCell {
 public:
  using RVTransitItemFixedHeightCell::RVTransitItemFixedHeightCell;
  static std::shared_ptr<ItalicCell> make() {
    return makeCell<ItalicCell>(ui::TableViewCellStyle::plain, "italic");
  }
  ui::Font _primaryFont() const override {
    return ui::Font::preferred(ui::TextStyle::title1, {.italic = true});
  }
  ui::Font _secondaryFont() const override {
    return ui::Font::preferred(ui::TextStyle::title2, {.italic = true});
  }
  double offset() const { return primaryLabelToContentGuideConstraint_->constant(); }
};

TEST_F(ItemCell, TakesTheFontsOfItsClassAndIsNotKeptAlive) {
  auto cell = ItalicCell::make();
  EXPECT_TRUE(cell->primaryLabel()->font().traits().italic);
  setTextSize(ui::TextSizeCategory::XL);
  EXPECT_EQ(cell->primaryLabel()->font(), cell->_primaryFont());
  EXPECT_EQ(cell->secondaryLabel()->font(), cell->_secondaryFont());
  const double capHeight = 0.7 * cell->_primaryFont().pointSize();
  EXPECT_NE(cell->snappedToPixel(capHeight), capHeight);
  EXPECT_EQ(cell->offset(), cell->_primaryFont().scaledValue(cell->snappedToPixel(capHeight)));
  const auto label = cell->primaryLabel();
  const std::weak_ptr<ItalicCell> gone = cell;
  cell.reset();
  EXPECT_TRUE(gone.expired());
  setTextSize(ui::TextSizeCategory::S);
  EXPECT_EQ(label->font().category(), ui::TextSizeCategory::XL)
      << "a label that outlives its cell keeps its font";
}

TEST_F(ItemCell, ShowsTheArtworkAtItsOpacityAndNothingForAMissingImage) {
  platform_->changeWorld([](auto& world) { world.missingImages.insert("Lost"); });
  show(item("Delays", std::nullopt));
  EXPECT_EQ(cell_->artworkImageView()->alpha(), 0.5);
  simulation::RecordingCanvas canvas({kWidth, 110});
  cell_->render(canvas);
  EXPECT_EQ(canvas.count(simulation::RecordingCanvas::Kind::image), 1U);

  show(item("Delays", std::nullopt, true, std::make_shared<const NamedImage>("Found")));
  EXPECT_EQ(rect("artworkImageView").size(), (ui::Size{20, 20}));
  show(item("Delays", std::nullopt, true, std::make_shared<const NamedImage>("Lost")));
  EXPECT_EQ(rect("artworkImageView").size(), (ui::Size{0, 0}));
  EXPECT_EQ(rect("stackView").maxX(), kWidth - 16 - 89) << "the column stays";
  simulation::RecordingCanvas empty({kWidth, 110});
  cell_->render(empty);
  EXPECT_EQ(empty.count(simulation::RecordingCanvas::Kind::image), 0U);
  EXPECT_TRUE(empty.isBalanced());
}

TEST_F(ItemCell, ShowsTheArtworkAtTheResolutionOfTheDisplay) {
  show(item("Delays", std::nullopt));
  EXPECT_FALSE(counted_.shields->scales.contains(3));
  cell_->setDisplayScale(3);
  layOut(*cell_);
  EXPECT_TRUE(counted_.shields->scales.contains(3));
}

TEST_F(ItemCell, DrawsItsTextsThroughTheirEffectsAndAHighlightBehindThem) {
  show(item("Delays", "Expect to wait"));
  const auto drawn = [&](ui::Appearance appearance) {
    simulation::RecordingCanvas canvas({kWidth, 110}, appearance);
    cell_->render(canvas);
    return canvas.drawn();
  };
  for (const auto appearance : {ui::Appearance::light, ui::Appearance::dark}) {
    const auto plain = drawn(appearance);
    ASSERT_EQ(plain.size(), 3U) << "two lines and an artwork";
    EXPECT_EQ(plain[0].color, ui::colorOf(ui::VibrancyEffect::primary).resolved(appearance));
    EXPECT_EQ(plain[1].color, ui::colorOf(ui::VibrancyEffect::secondary).resolved(appearance));
    EXPECT_EQ(plain[2].alpha, 0.5);
  }
  cell_->setHighlighted(true);
  const auto highlighted = drawn(ui::Appearance::light);
  ASSERT_EQ(highlighted.size(), 4U);
  EXPECT_EQ(highlighted[0].rect, (ui::Rect{0, 0, kWidth, 110}));
  cell_->setHighlighted(false);
  EXPECT_EQ(drawn(ui::Appearance::light).size(), 3U);
}

TEST_F(ItemCell, TheArtworkKeepsEightPointsFromTheRowsEdges) {
  // Far taller than the row.
  show(item("Delays", "Wait", true, sizedArtwork(60, cache_, 3 + 8 * 6)), 89, 110);
  const ui::Rect artwork = rect("artworkImageView");
  EXPECT_EQ(artwork.y, 8);
  EXPECT_EQ(artwork.maxY(), 102);
}

TEST_F(ItemCell, AnEqualItemChangesNothingAndNoItemShowsNothing) {
  cell_->setTransitItem(nullptr);
  EXPECT_FALSE(cell_->artworkImageView()->isHidden()) << "no item on a cell without one does nothing";
  show(item("Delays", "Expect to wait"));
  const auto shown = cell_->transitItem();
  cell_->primaryLabel()->setText("left alone");
  cell_->setTransitItem(item("Delays", "Expect to wait"));
  EXPECT_EQ(cell_->primaryLabel()->text(), "left alone");
  EXPECT_EQ(cell_->transitItem(), shown);
  cell_->setTransitItem(nullptr);
  layOut(*cell_);
  EXPECT_EQ(cell_->transitItem(), nullptr);
  EXPECT_EQ(cell_->primaryLabel()->text(), "");
  EXPECT_EQ(cell_->secondaryLabel()->text(), "");
  EXPECT_FALSE(isShown("artworkImageView"));
  EXPECT_FALSE(isShown("secondaryLabel"));
  EXPECT_EQ(cell_->artworkImageView()->image(), nullptr);
}

TEST_F(ItemCell, SurvivesTextsAndNumbersOfAnySize) {
  const std::string endless(100'000, 'x');
  show(item(endless, endless));
  EXPECT_EQ(cell_->frame().height, 110) << "the row's height comes first";
  EXPECT_GE(rect("contentGuide").y, 0);
  EXPECT_LE(rect("contentGuide").maxY(), 110);
  show(item(endless + "\xFF\xFE", std::string(100'000, '\n')));

  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN(),
                   kInfinity = std::numeric_limits<double>::infinity();
  for (const double bad : {kNaN, -50.0, kInfinity, -kInfinity, 1e300}) {
    show(item("Delays", "Expect to wait"), bad, 110);
    show(item("Delays", "Expect to wait"), 89, bad);
    layOut(*cell_, bad);
    for (const NamedRect& part : cell_->namedRects()) {
      EXPECT_FALSE(part.rect.width < 0 || part.rect.height < 0) << part.name;
      EXPECT_FALSE(part.rect.x != part.rect.x || part.rect.y != part.rect.y) << part.name;
    }
  }
  show(item("Delays", "Expect to wait"));
  EXPECT_EQ(rect("stackView").maxX(), kWidth - 16 - 89) << "recovers from bad numbers";
  EXPECT_EQ(cell_->frame().height, 110);
}

// ---- VisualEffectWrappingView ----

TEST_F(ItemCell, AWrapperShowsOneLabelFromEdgeToEdge) {
  auto root = std::make_shared<ui::View>(ui::Rect{0, 0, 100, 50});
  auto wrapper = std::make_shared<VisualEffectWrappingView>(ui::VibrancyEffect::secondary);
  wrapper->setFrame({10, 5, 80, 40});
  root->addSubview(wrapper);
  EXPECT_EQ(&wrapper->viewForFirstBaselineLayout(), wrapper.get());
  auto first = std::make_shared<ui::Label>(), second = std::make_shared<ui::Label>();
  wrapper->setLabel(first);
  wrapper->setLabel(second);
  EXPECT_EQ(first->superview(), nullptr);
  wrapper->setLabel(second);
  root->layoutIfNeeded();
  EXPECT_EQ(second->superview(), &wrapper->contentView());
  EXPECT_EQ(second->convertRectTo(second->bounds(), *root), (ui::Rect{10, 5, 80, 40}));
  EXPECT_EQ(&wrapper->viewForFirstBaselineLayout(), second.get());
  EXPECT_EQ(&wrapper->viewForLastBaselineLayout(), second.get());

  root->addSubview(second);
  wrapper->setLabel(nullptr);
  EXPECT_EQ(second->superview(), root.get()) << "a label that was taken elsewhere stays there";
}

}  // namespace
}  // namespace linewatch
