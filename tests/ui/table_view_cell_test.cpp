#include "ui/table_view_cell.h"

#include <cmath>
#include <initializer_list>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "ui/sample_row.h"
#include "ui/ui_fixture.h"

namespace linewatch::ui {
namespace {

using testing::IsEmpty;

using TableViewCellTest = UiTest;

Rect inCell(const View& view, const View& cell) { return view.convertRectTo(view.bounds(), cell); }

/// The rectangles of all parts, in the row's coordinates.
std::vector<Rect> rects(SampleRow& row) {
  std::vector<Rect> all;
  for (const View* view : std::initializer_list<const View*>{
           &row.contentView(), row.stack.get(), row.primary.get(), row.secondary.get(), row.image.get()}) {
    all.push_back(inCell(*view, row));
  }
  all.push_back(row.guide->layoutFrame());
  all.push_back(row.contentView().convertRectTo(row.gutter->layoutFrame(), row));
  return all;
}

TEST_F(TableViewCellTest, ARowOfTextAndImage) {
  SampleRow row;
  row.primary->setText("Central Station");
  row.secondary->setText("Delays");
  row.layOutAtWidth(359);
  // First baseline 14 below the label's top and 12 below the block's; 21 from baseline to baseline.
  EXPECT_EQ(row.guide->layoutFrame(), (Rect{16, 38.5, 327, 33}));
  EXPECT_EQ(inCell(*row.primary, row), (Rect{16, 36.5, 254, 17.5}));
  EXPECT_EQ(inCell(*row.secondary, row), (Rect{16, 59.5, 254, 15}));
  EXPECT_EQ(inCell(*row.image, row), (Rect{323, 45, 20, 20}));
  EXPECT_THAT(errors(), IsEmpty());

  row.setShowsImage(false);
  row.layoutIfNeeded();
  EXPECT_EQ(inCell(*row.primary, row).maxX(), 343);
  row.height->setConstant(64);
  row.layOutAtWidth(359);
  EXPECT_EQ(row.frame().height, 64);
  EXPECT_EQ(row.guide->layoutFrame(), (Rect{16, 15.5, 327, 33}));
  row.height->setConstant(64.1);
  row.layOutAtWidth(359);
  EXPECT_EQ(row.frame().height, 64.5) << "rounded up to whole pixels";
}

TEST_F(TableViewCellTest, RightToLeftIsTheMirrorImage) {
  SampleRow row;
  row.primary->setText("Central Station and some more words to wrap");
  row.secondary->setText("Delays");
  row.layOutAtWidth(359);
  const std::vector<Rect> before = rects(row);
  row.setLayoutDirection(LayoutDirection::rightToLeft);
  EXPECT_TRUE(row.needsLayout());
  row.layoutIfNeeded();
  const std::vector<Rect> after = rects(row);
  for (std::size_t i = 0; i < before.size(); ++i) {
    EXPECT_EQ(after[i], (Rect{359 - before[i].maxX(), before[i].y, before[i].width, before[i].height}));
  }
  const auto layout = row.primary->displayedLayout();
  EXPECT_EQ(layout->lines.front().x + layout->lines.front().width, row.primary->frame().width);
}

TEST_F(TableViewCellTest, EdgesAndBaselinesAreOnThePixelGrid) {
  for (const double scale : {1.0, 1.5, 2.0, 3.0}) {
    SCOPED_TRACE(scale);
    const auto isOnGrid = [&](double length) {
      return std::fabs(length * scale - std::round(length * scale)) < 1e-6;
    };
    SampleRow row;
    row.setDisplayScale(scale);
    row.primary->setText("Central Station and some more words to wrap");
    row.secondary->setText("Delays");
    row.firstBaseline->setConstant(row.snappedToPixel(11.9));
    row.gutterWidth->setConstant(61.37);
    row.stack->setSpacing(row.snappedToPixel(21));
    for (const auto direction : {LayoutDirection::rightToLeft, LayoutDirection::leftToRight}) {
      row.setLayoutDirection(direction);
      row.layOutAtWidth(360.3);
      for (const Rect& rect : rects(row)) {
        EXPECT_TRUE(isOnGrid(rect.x) && isOnGrid(rect.y) && isOnGrid(rect.maxX()) && isOnGrid(rect.maxY()));
      }
    }
    const double first = inCell(*row.primary, row).y + row.primary->displayedLayout()->firstBaseline();
    const double last = inCell(*row.primary, row).y + row.primary->displayedLayout()->lastBaseline();
    const double next = inCell(*row.secondary, row).y + row.secondary->displayedLayout()->firstBaseline();
    EXPECT_TRUE(isOnGrid(first));
    EXPECT_NEAR(first - row.guide->layoutFrame().y, row.firstBaseline->constant(), 1e-6);
    EXPECT_NEAR(next - last, row.stack->spacing(), 1e-6);
  }
  EXPECT_EQ(snappedToPixel(0.25, 2), 0.5);
  EXPECT_EQ(snappedToPixel(-0.3, 2), -0.5);
  EXPECT_EQ(snappedToPixel(1.4, 0), 1);
}

/// Everything that a row's layout depends on.
struct RowState {
  double width = 359;
  double height = 110;
  double gutter = 73;
  double spacing = 21;
  double scale = 2;
  bool showsImage = true;
  bool hidesSecondary = false;
  LayoutDirection direction = LayoutDirection::leftToRight;
  TextSizeCategory size = kDefaultTextSizeCategory;
  std::string primary;
  std::string secondary;

  void applyTo(SampleRow& row) const {
    row.setLayoutDirection(direction);
    row.setDisplayScale(scale);
    row.primary->setFont(Font(TextStyle::headline, {}, size));
    row.secondary->setFont(Font(TextStyle::subheadline, {}, size));
    row.primary->setText(primary);
    row.secondary->setText(secondary);
    row.height->setConstant(height);
    row.gutterWidth->setConstant(gutter);
    row.stack->setSpacing(spacing);
    row.secondaryEffect->setHidden(hidesSecondary);
    row.setShowsImage(showsImage);
    row.layOutAtWidth(width);
  }

  void editAtRandom(std::mt19937& random) {
    const auto number = [&](int low, int high) { return std::uniform_int_distribution(low, high)(random); };
    switch (number(0, 9)) {
      case 0:
        width = number(0, 500);
        break;
      case 1:
        height = number(20, 200);
        break;
      case 2:
        gutter = number(0, 600) / 7.0;
        break;
      case 3:
        spacing = number(10, 40);
        break;
      case 4:
        scale = number(2, 6) / 2.0;
        break;
      case 5:
        showsImage = !showsImage;
        break;
      case 6:
        hidesSecondary = !hidesSecondary;
        break;
      case 7:
        direction = number(0, 1) == 0 ? LayoutDirection::leftToRight : LayoutDirection::rightToLeft;
        break;
      case 8:
        size = static_cast<TextSizeCategory>(number(0, 11));
        break;
      default:
        (number(0, 1) == 0 ? primary : secondary) =
            std::string(static_cast<std::size_t>(number(0, 12)), 'w') + " " +
            std::string(static_cast<std::size_t>(number(0, 40)), 'x');
    }
  }
};

TEST_F(TableViewCellTest, SuccessiveChangesGiveTheLayoutOfANewCell) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    std::mt19937 random(seed);
    SampleRow changed;
    RowState state;
    for (int step = 0; step < 40; ++step) {
      SCOPED_TRACE(testing::Message() << "seed " << seed << ", step " << step);
      state.editAtRandom(random);
      state.applyTo(changed);
      SampleRow fresh;
      state.applyTo(fresh);
      ASSERT_EQ(rects(changed), rects(fresh));
    }
  }
  EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(TableViewCellTest, ALayoutRootInsideAnotherIsLaidOutByItself) {
  View root({0, 0, 400, 400});
  const auto row = std::make_shared<SampleRow>();
  row->primary->setText("Central Station");
  row->setLaidOutByConstraints(true);
  root.addSubview(row);
  const auto crossing = row->leadingAnchor().constraintEqualTo(root.leadingAnchor(), 50);
  crossing->setActive(true);
  EXPECT_FALSE(crossing->isActive());
  root.layoutIfNeeded();
  EXPECT_EQ(row->frame(), (Rect{0, 0, 359, 110}));
  EXPECT_EQ(inCell(*row->image, *row).maxX(), 343);
  row->removeFromSuperview();
  row->primary->setText("Harbour");
  row->layoutIfNeeded();
  root.layoutIfNeeded();
}

}  // namespace
}  // namespace linewatch::ui
