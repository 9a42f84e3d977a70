#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "ui/sample_row.h"
#include "ui/ui_fixture.h"

namespace linewatch::ui {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

class LayoutTest : public UiTest {};

Rect inCell(const View& view, const View& cell) { return view.convertRectTo(view.bounds(), cell); }

/// The rectangles of everything in the row, in the row's coordinates.
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

TEST_F(LayoutTest, ARowOfTextAndImage) {
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
  EXPECT_EQ(row.frame().height, 64.5) << "whole pixels, and none too few";
}

TEST_F(LayoutTest, TextThatIsTooTallGivesWayFromTheEndByWholeLines) {
  SampleRow row;
  row.primary->setText("Replacement buses");
  row.secondary->setText(std::string(1000, 'x'));
  row.layOutAtWidth(359);
  EXPECT_EQ(inCell(*row.primary, row).height, 17.5) << "the first text is shown whole";
  const auto layout = row.secondary->displayedLayout();
  ASSERT_THAT(layout->lines, SizeIs(5));
  EXPECT_TRUE(layout->lines.back().truncated);
  // The block is as high as the lines that are left, and no line crosses an edge of the row.
  EXPECT_EQ(inCell(*row.secondary, row).height, layout->size.height);
  EXPECT_EQ(row.guide->layoutFrame(), (Rect{16, 8.5, 327, 93}));
  EXPECT_GE(inCell(*row.primary, row).y, 0);
  EXPECT_LE(inCell(*row.secondary, row).maxY(), 110);

  row.height->setConstant(200);
  row.layOutAtWidth(359);
  EXPECT_GT(row.secondary->displayedLayout()->lines.size(), 5U) << "what was left out comes back";
  EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(LayoutTest, WhereBothTextsAreTooTallTheFirstIsShown) {
  SampleRow row;
  row.primary->setText(std::string(1000, 'x'));
  row.secondary->setText(std::string(1000, 'y'));
  row.layOutAtWidth(359);
  EXPECT_THAT(row.secondary->displayedLayout()->lines, IsEmpty());
  EXPECT_EQ(row.primary->displayedLayout()->lines.size(), 6U);
  EXPECT_GE(inCell(*row.primary, row).y, 0);
  EXPECT_LE(inCell(*row.primary, row).maxY(), 110);
}

TEST_F(LayoutTest, RightToLeftIsTheMirrorImage) {
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

TEST_F(LayoutTest, EdgesAndBaselinesAreOnThePixelGrid) {
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

/// All that a row's layout depends on.
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
    row.stack->arrangedSubviews().back()->setHidden(hidesSecondary);
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

TEST_F(LayoutTest, ManyChangesComeOutAsIfMadeAtOnce) {
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

/// Counts what it is asked.
class CountingView final : public View {
 public:
  std::optional<double> intrinsicWidth() override {
    ++questions;
    return std::nullopt;
  }
  std::optional<double> intrinsicHeight(double width) override {
    ++questions;
    return area / std::max(1.0, width);
  }
  void layoutSubviews() override {
    ++layouts;
    View::layoutSubviews();
  }

  double area = 1000;
  int questions = 0;
  int layouts = 0;
};

TEST_F(LayoutTest, OnlyWhatChangedIsLaidOutAgain) {
  View root({0, 0, 100, 100});
  std::vector<std::shared_ptr<CountingView>> views;
  std::vector<SharedConstraint> widths;
  for (int i = 0; i < 2; ++i) {
    views.push_back(std::make_shared<CountingView>());
    views.back()->setLaidOutByConstraints(true);
    root.addSubview(views.back());
    widths.push_back(views.back()->widthAnchor().constraintEqualToConstant(50));
    LayoutConstraint::activate({widths.back(),
                                views.back()->leadingAnchor().constraintEqualTo(root.leadingAnchor()),
                                views.back()->topAnchor().constraintEqualTo(root.topAnchor())});
  }
  root.layoutIfNeeded();
  EXPECT_EQ(views[0]->frame(), (Rect{0, 0, 50, 20}));
  const auto reset = [&] {
    for (const auto& view : views) view->questions = view->layouts = 0;
  };
  reset();
  root.layoutIfNeeded();
  EXPECT_EQ(views[0]->layouts + views[1]->layouts, 0);
  widths[1]->setConstant(25);
  root.layoutIfNeeded();
  EXPECT_EQ(views[1]->frame(), (Rect{0, 0, 25, 40}));
  EXPECT_EQ(views[0]->questions + views[0]->layouts, 0) << "its neighbour's width is none of its business";
  EXPECT_EQ(views[1]->questions, 1);
  reset();
  widths[1]->setConstant(25);
  EXPECT_FALSE(root.needsLayout()) << "the same constant is no change";
  views[0]->area = 500;
  views[0]->invalidateIntrinsicContentSize();
  root.layoutIfNeeded();
  EXPECT_EQ(views[0]->frame().height, 10);
  EXPECT_EQ(views[1]->questions + views[1]->layouts, 0);
  const auto asWideAsAll = views[1]->widthAnchor().constraintEqualTo(root.widthAnchor());
  for (const double width : {100, 25}) {
    reset();
    widths[1]->setActive(width == 25);
    asWideAsAll->setActive(width == 100);
    root.layoutIfNeeded();
    EXPECT_EQ(views[1]->frame().width, width);
    EXPECT_EQ(views[1]->questions, 1);
    EXPECT_EQ(views[0]->questions + views[0]->layouts, 0) << "one constraint takes another's place";
  }
}

TEST_F(LayoutTest, ContradictionsGiveWayInTheOrderOfMakingAndAreLoggedOnce) {
  View root({0, 0, 100, 100});
  const auto view = addView(root);
  const auto older = view->widthAnchor().constraintEqualToConstant(30);
  const auto younger = view->widthAnchor().constraintEqualToConstant(40);
  younger->setActive(true);
  older->setActive(true);
  for (int i = 0; i < 3; ++i) {
    root.layoutIfNeeded();
    EXPECT_EQ(view->frame().width, 30);
    EXPECT_THAT(errors(), ElementsAre(HasSubstr("gives way: View.width == 40")));
    younger->setActive(false);
    root.layoutIfNeeded();
    younger->setActive(true);
  }
  older->setActive(false);
  root.layoutIfNeeded();
  EXPECT_EQ(view->frame().width, 40);
  younger->setPriority(kHighPriority);
  older->setActive(true);
  root.layoutIfNeeded();
  EXPECT_EQ(view->frame().width, 30);
  EXPECT_THAT(errors(), SizeIs(1));
}

TEST_F(LayoutTest, NumbersThatAreNoneAreLeftOut) {
  View root({kNaN, kInfinity, -5, 100});
  EXPECT_EQ(root.frame(), (Rect{0, kLongestLength, 0, 100}));
  root.setFrame({0, 0, 100, 100});
  const auto view = addView(root);
  const auto width = view->widthAnchor().constraintEqualToConstant(30);
  const auto leading = view->leadingAnchor().constraintEqualTo(root.leadingAnchor(), 7);
  LayoutConstraint::activate({width, leading, view->topAnchor().constraintEqualTo(root.topAnchor()),
                              view->heightAnchor().constraintEqualToConstant(5)});
  for (const double bad : {kNaN, kInfinity, -kInfinity}) {
    leading->setConstant(bad);
    root.layoutIfNeeded();
    EXPECT_EQ(view->frame().width, 30);
  }
  EXPECT_THAT(errors(), ElementsAre(HasSubstr("no number")));
  leading->setConstant(9);
  width->setConstant(-30);
  root.layoutIfNeeded();
  EXPECT_EQ(view->frame(), (Rect{9, 0, 0, 5})) << "a negative width is empty";
  view->setAlpha(kNaN);
  EXPECT_EQ(view->alpha(), 1);
}

TEST_F(LayoutTest, HostsOfAnySizeAreLaidOut) {
  SampleRow row;
  row.primary->setText("Central Station");
  row.secondary->setText("Delays");
  for (const double width : {0.0, 10.0, 1e9, 359.0}) {
    for (const double height : {0.0, 1.0, 1e9, 110.0}) {
      row.height->setConstant(height);
      row.layOutAtWidth(width);
      for (const Rect& rect : rects(row)) EXPECT_GE(std::min(rect.width, rect.height), 0);
    }
  }
  EXPECT_EQ(inCell(*row.primary, row), (Rect{16, 36.5, 254, 17.5})) << "and none leaves a trace";
  EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(LayoutTest, ConstraintsEndWhereTheirItemsPart) {
  View root({0, 0, 100, 100});
  const auto box = addView(root);
  const auto inner = addView(*box);
  const auto across = inner->leadingAnchor().constraintEqualTo(root.leadingAnchor(), 10);
  const auto inside = inner->widthAnchor().constraintEqualTo(box->widthAnchor(), 0.5, 1);
  LayoutConstraint::activate({across, inside, box->widthAnchor().constraintEqualToConstant(50)});
  root.layoutIfNeeded();
  EXPECT_EQ(inner->frame().width, 26);
  box->removeFromSuperview();
  EXPECT_FALSE(across->isActive());
  EXPECT_TRUE(inside->isActive());
  root.layoutIfNeeded();
  box->layoutIfNeeded();
  across->setActive(true);
  across->setActive(true);
  EXPECT_FALSE(across->isActive());
  EXPECT_THAT(errors(), ElementsAre(HasSubstr("stays inactive: View.leading == View.leading + 10")));
  root.addSubview(box);
  across->setActive(true);
  root.layoutIfNeeded();
  EXPECT_EQ(inner->frame().width, 26);

  const auto guide = std::make_shared<LayoutGuide>();
  box->addLayoutGuide(guide);
  const auto toGuide = guide->widthAnchor().constraintEqualTo(box->widthAnchor());
  toGuide->setActive(true);
  root.layoutIfNeeded();
  EXPECT_EQ(guide->layoutFrame().width, 50);
  box->removeLayoutGuide(guide);
  EXPECT_FALSE(toGuide->isActive());
  root.layoutIfNeeded();
}

TEST_F(LayoutTest, ConstraintsOutliveTheirItems) {
  SharedConstraint constraint;
  {
    View root;
    constraint = addView(root)->widthAnchor().constraintEqualTo(root.widthAnchor());
    constraint->setActive(true);
    root.layoutIfNeeded();
  }
  EXPECT_FALSE(constraint->isActive());
  EXPECT_EQ(constraint->firstItem(), nullptr);
  constraint->setConstant(3);
  constraint->setActive(true);
  EXPECT_FALSE(constraint->isActive());
}

/// Names another view as the one whose baselines it has.
class BorrowingView final : public View {
 public:
  View& viewForFirstBaselineLayout() override { return lender.expired() ? *this : *lender.lock(); }

  std::weak_ptr<View> lender;
};

TEST_F(LayoutTest, BaselinesThatGoInCirclesAreLaidOut) {
  View root({0, 0, 100, 100});
  const auto one = std::make_shared<BorrowingView>();
  const auto other = std::make_shared<BorrowingView>();
  for (const auto& view : {one, other}) {
    view->setLaidOutByConstraints(true);
    root.addSubview(view);
  }
  one->lender = other;
  other->lender = one;
  one->firstBaselineAnchor().constraintEqualTo(root.topAnchor(), 30)->setActive(true);
  root.layoutIfNeeded();
  EXPECT_FALSE(root.needsLayout());
}

/// Never content with what it is given.
class RestlessView final : public View {
 public:
  void layoutSubviews() override {
    View::layoutSubviews();
    setNeedsLayout();
  }
};

TEST_F(LayoutTest, ALayoutThatNeverRestsIsLeftWithALine) {
  RestlessView view;
  view.layoutIfNeeded();
  EXPECT_FALSE(view.needsLayout());
  EXPECT_THAT(errors(), ElementsAre(HasSubstr("never comes to rest")));
}

TEST_F(LayoutTest, StacksLeaveHiddenViewsOut) {
  View root({0, 0, 100, 100});
  for (const Axis axis : {Axis::vertical, Axis::horizontal}) {
    const auto stack = std::make_shared<StackView>(axis);
    stack->setLaidOutByConstraints(true);
    stack->setSpacing(5);
    stack->setAlignment(StackAlignment::center);
    root.addSubview(stack);
    LayoutConstraint::activate({stack->leadingAnchor().constraintEqualTo(root.leadingAnchor()),
                                stack->topAnchor().constraintEqualTo(root.topAnchor()),
                                stack->widthAnchor().constraintGreaterThanOrEqualToConstant(20),
                                stack->heightAnchor().constraintGreaterThanOrEqualToConstant(20)});
    std::vector<std::shared_ptr<View>> views;
    for (int i = 0; i < 3; ++i) {
      views.push_back(std::make_shared<View>());
      stack->addArrangedSubview(views.back());
      LayoutConstraint::activate({views.back()->widthAnchor().constraintEqualToConstant(10),
                                  views.back()->heightAnchor().constraintEqualToConstant(10)});
    }
    const auto places = [&] {
      root.layoutIfNeeded();
      std::vector<double> along;
      for (const auto& view : views) {
        EXPECT_EQ(axis == Axis::vertical ? view->frame().x : view->frame().y, 5);
        along.push_back(axis == Axis::vertical ? view->frame().y : view->frame().x);
      }
      return along;
    };
    EXPECT_THAT(places(), ElementsAre(0, 15, 30));
    views[1]->setHidden(true);
    EXPECT_EQ(places()[2], 15);
    views[0]->setHidden(true);
    views[1]->setHidden(false);
    EXPECT_EQ(places()[1], 0);
    EXPECT_EQ(places()[2], 15);
    views[0]->setHidden(false);
    stack->setSpacing(8);
    EXPECT_THAT(places(), ElementsAre(0, 18, 36));
    views[0]->removeFromSuperview();
    EXPECT_EQ(places()[2], 18) << "one that goes by itself leaves no gap";
  }
  EXPECT_THAT(errors(), IsEmpty());
}

/// A tree that is changed in every way there is, sensible or not.
class HostileTree {
 public:
  explicit HostileTree(unsigned seed) : random_(seed) {
    for (int i = 0; i < 8; ++i) {
      std::shared_ptr<View> view = std::make_shared<View>();
      if (i % 3 == 1) view = std::make_shared<Label>();
      if (i % 4 == 2) view = std::make_shared<StackView>(i % 8 == 2 ? Axis::vertical : Axis::horizontal);
      view->setLaidOutByConstraints(i % 4 != 0);
      views_.push_back(view);
      root.addSubview(view);
    }
  }

  void change() {
    View& view = anyView();
    switch (number(0, 11)) {
      case 0:
        root.setFrame({0, 0, length(), length()});
        break;
      case 1:
        anyView().addSubview(shared(view));
        break;
      case 2:
        view.setHidden(!view.isHidden());
        break;
      case 3:
        view.setLayoutDirection(number(0, 1) == 0 ? LayoutDirection::leftToRight
                                                  : LayoutDirection::rightToLeft);
        break;
      case 4:
        if (auto* stack = dynamic_cast<StackView*>(&view)) stack->addArrangedSubview(shared(anyView()));
        break;
      case 5:
        if (auto* stack = dynamic_cast<StackView*>(&view)) stack->setSpacing(length());
        view.setFrame({length(), length(), length(), length()});
        break;
      case 6:
        if (auto* label = dynamic_cast<Label*>(&view)) label->setText(std::string(random_() % 50, 'x'));
        break;
      case 7:
        if (!constraints_.empty()) anyConstraint().setActive(number(0, 1) == 0);
        break;
      case 8:
        if (!constraints_.empty()) anyConstraint().setConstant(length());
        break;
      default:
        add(view, anyView());
    }
  }

  void expectSensible() {
    EXPECT_FALSE(root.needsLayout());
    for (const auto& view : views_) {
      const Rect& frame = view->frame();
      EXPECT_TRUE(std::isfinite(frame.x) && std::isfinite(frame.y));
      EXPECT_TRUE(frame.width >= 0 && frame.width < kInfinity && frame.height >= 0 &&
                  frame.height < kInfinity);
    }
  }

  View root{{0, 0, 300, 300}};

 private:
  int number(int low, int high) { return std::uniform_int_distribution(low, high)(random_); }
  View& anyView() { return *views_[random_() % views_.size()]; }
  LayoutConstraint& anyConstraint() { return *constraints_[random_() % constraints_.size()]; }
  std::shared_ptr<View> shared(View& view) {
    for (const auto& each : views_) {
      if (each.get() == &view) return each;
    }
    return nullptr;
  }
  double length() {
    constexpr double kOdd[] = {kNaN, kInfinity, -kInfinity, 1e300, -1e9, 0, 1e-12};
    return number(0, 9) == 0 ? kOdd[random_() % std::size(kOdd)] : number(-100, 300);
  }

  void add(View& one, View& other) {
    constexpr double kFactors[] = {1, 0.5, -1, 3, 0, 1e-9, 1e7, kNaN};
    const auto dimension = [&](View& view) {
      return number(0, 1) == 0 ? view.widthAnchor() : view.heightAnchor();
    };
    const YAnchor ys[] = {other.topAnchor(), other.centerYAnchor(), other.firstBaselineAnchor(),
                          other.lastBaselineAnchor()};
    switch (number(0, 3)) {
      case 0:
        constraints_.push_back(
            one.leadingAnchor().constraintGreaterThanOrEqualTo(other.centerXAnchor(), length()));
        break;
      case 1:
        constraints_.push_back(one.bottomAnchor().constraintLessThanOrEqualTo(ys[random_() % 4], length()));
        break;
      case 2:
        constraints_.push_back(one.firstBaselineAnchor().constraintEqualTo(ys[random_() % 4], length()));
        break;
      default:
        constraints_.push_back(
            dimension(one).constraintEqualTo(dimension(other), kFactors[random_() % 8], length()));
    }
    constraints_.back()->setPriority(number(0, 1) == 0 ? kRequiredPriority : number(1, 999));
    constraints_.back()->setActive(true);
  }

  std::mt19937 random_;
  std::vector<std::shared_ptr<View>> views_;
  std::vector<SharedConstraint> constraints_;
};

TEST_F(LayoutTest, TreesWithAnyConstraintsComeToRest) {
  for (unsigned seed = 1; seed <= 60; ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    HostileTree tree(seed);
    for (int step = 0; step < 60; ++step) {
      tree.change();
      tree.root.layoutIfNeeded();
      tree.expectSensible();
      if (HasFailure()) return;
    }
  }
}

TEST_F(LayoutTest, ALayoutRootInsideAnotherIsApartFromIt) {
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

TEST_F(LayoutTest, AHeightMayFollowAWidth) {
  View root({0, 0, 200, 300});
  const auto view = addView(root);
  LayoutConstraint::activate({view->widthAnchor().constraintEqualTo(root.widthAnchor()),
                              view->heightAnchor().constraintEqualTo(view->widthAnchor(), 0.5, 10)});
  root.layoutIfNeeded();
  EXPECT_EQ(view->frame().height, 110);
  root.setFrame({0, 0, 100, 300});
  root.layoutIfNeeded();
  EXPECT_EQ(view->frame().height, 60);
}

TEST_F(LayoutTest, FrameLayoutFollowsTheSuperview) {
  View root({0, 0, 100, 50});
  const auto child = std::make_shared<View>(Rect{10, 5, 80, 40});
  child->setResizesWithSuperview(true, false);
  root.addSubview(child);
  const auto pinned = addView(root);
  LayoutConstraint::activate({pinned->leadingAnchor().constraintEqualTo(child->trailingAnchor(), 3),
                              pinned->topAnchor().constraintEqualTo(child->bottomAnchor())});
  root.layoutIfNeeded();
  EXPECT_EQ(pinned->frame().origin(), (Point{93, 45}));
  root.setFrame({0, 0, 130, 90});
  root.layoutIfNeeded();
  EXPECT_EQ(child->frame(), (Rect{10, 5, 110, 40}));
  EXPECT_EQ(pinned->frame().origin(), (Point{123, 45}));
  child->setFrame({4, 7, 110, 40});
  root.layoutIfNeeded();
  EXPECT_EQ(pinned->frame().origin(), (Point{117, 47}));
}

}  // namespace
}  // namespace linewatch::ui
