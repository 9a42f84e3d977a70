#include "ui/view.h"

#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "simulation/roles/recording_canvas.h"
#include "ui/label.h"
#include "ui/sample_row.h"
#include "ui/stack_view.h"
#include "ui/ui_fixture.h"

namespace linewatch::ui {
namespace {

using simulation::RecordingCanvas;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

using ViewTest = UiTest;

/// Counts how often the layout measures the view.
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

TEST_F(ViewTest, OnlyWhatChangedIsLaidOutAgain) {
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
  EXPECT_EQ(views[0]->questions + views[0]->layouts, 0) << "a neighbour's width does not matter";
  EXPECT_EQ(views[1]->questions, 1);
  reset();
  widths[1]->setConstant(25);
  EXPECT_FALSE(root.needsLayout()) << "the same constant is no change";
  views[0]->area = 500;
  views[0]->invalidateIntrinsicContentSize();
  root.layoutIfNeeded();
  EXPECT_EQ(views[0]->frame().height, 10);
  EXPECT_EQ(views[1]->questions + views[1]->layouts, 0);
  const auto toTheEnd = views[1]->trailingAnchor().constraintEqualTo(root.trailingAnchor());
  for (const double width : {100, 25}) {
    reset();
    widths[1]->setActive(width == 25);
    toTheEnd->setActive(width == 100);
    root.layoutIfNeeded();
    EXPECT_EQ(views[1]->frame().width, width);
    EXPECT_EQ(views[1]->questions, 1);
    EXPECT_EQ(views[0]->questions + views[0]->layouts, 0) << "only a constraint was exchanged";
  }
}

TEST_F(ViewTest, OddNumbersGiveSensibleFrames) {
  View root({kNaN, kInfinity, -5, 100});
  EXPECT_EQ(root.frame(), (Rect{0, kLongestLength, 0, 100}));
  root.setFrame({0, 0, 100, 100});
  const auto view = addView(root);
  LayoutConstraint::activate({view->widthAnchor().constraintEqualToConstant(-30),
                              view->leadingAnchor().constraintEqualTo(root.leadingAnchor(), 9),
                              view->topAnchor().constraintEqualTo(root.topAnchor()),
                              view->heightAnchor().constraintEqualToConstant(5)});
  root.layoutIfNeeded();
  EXPECT_EQ(view->frame(), (Rect{9, 0, 0, 5})) << "a negative width is empty";
  view->setAlpha(kNaN);
  EXPECT_EQ(view->alpha(), 1);
}

TEST_F(ViewTest, FrameLayoutFollowsTheSuperview) {
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

/// Asks for another layout each time it is laid out.
class RestlessView final : public View {
 public:
  void layoutSubviews() override {
    View::layoutSubviews();
    setNeedsLayout();
  }
};

TEST_F(ViewTest, AnEndlessLayoutIsStoppedAndLogged) {
  RestlessView view;
  view.layoutIfNeeded();
  EXPECT_FALSE(view.needsLayout());
  EXPECT_THAT(errors(), ElementsAre(HasSubstr("never comes to rest")));
}

/// A tree that is changed at random in every way the toolkit offers.
class HostileTree {
 public:
  explicit HostileTree(unsigned seed) : random_(seed) {
    for (int i = 0; i < 8; ++i) {
      std::shared_ptr<View> view = std::make_shared<View>();
      if (i % 3 == 1) view = std::make_shared<Label>();
      if (i % 4 == 2) view = std::make_shared<StackView>();
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
    const YAnchor ys[] = {other.topAnchor(), other.centerYAnchor(), other.firstBaselineAnchor(),
                          other.lastBaselineAnchor()};
    switch (number(0, 3)) {
      case 0:
        constraints_.push_back(
            one.leadingAnchor().constraintGreaterThanOrEqualTo(other.trailingAnchor(), length()));
        break;
      case 1:
        constraints_.push_back(one.bottomAnchor().constraintLessThanOrEqualTo(ys[random_() % 4], length()));
        break;
      case 2:
        constraints_.push_back(one.firstBaselineAnchor().constraintEqualTo(ys[random_() % 4], length()));
        break;
      default:
        constraints_.push_back(
            (number(0, 1) == 0 ? one.widthAnchor() : one.heightAnchor()).constraintEqualToConstant(length()));
    }
    constraints_.back()->setActive(true);
  }

  std::mt19937 random_;
  std::vector<std::shared_ptr<View>> views_;
  std::vector<SharedConstraint> constraints_;
};

TEST_F(ViewTest, RandomTreesGetSensibleFrames) {
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

TEST_F(ViewTest, ViewsDrawTheirVisibleParts) {
  SampleRow row;
  row.primary->setText("Central Station");
  row.secondary->setText("Delays");
  row.image->setAlpha(0.5);
  row.layOutAtWidth(359);
  RecordingCanvas canvas({359, 110}, Appearance::dark);
  row.render(canvas);
  ASSERT_THAT(canvas.drawn(), SizeIs(3));
  EXPECT_EQ(canvas.drawn()[0].baseline, row.guide->layoutFrame().y + 12);
  EXPECT_EQ(canvas.drawn()[0].color, Color(SemanticColor::label).resolved(Appearance::dark));
  EXPECT_EQ(canvas.drawn()[1].color, Color(SemanticColor::secondaryLabel).resolved(Appearance::dark));
  EXPECT_EQ(canvas.drawn()[2].name, "shield");
  EXPECT_EQ(canvas.drawn()[2].alpha, 0.5);
  EXPECT_TRUE(canvas.isBalanced());

  row.primary->setHidden(true);
  row.secondary->setAlpha(0);
  row.setHighlighted(true);
  RecordingCanvas other({359, 110});
  row.render(other);
  EXPECT_EQ(other.count(RecordingCanvas::Kind::text), 0U);
  EXPECT_EQ(other.count(RecordingCanvas::Kind::rect), 1U);
}

TEST_F(ViewTest, AChangeAsksTheWindowForALayoutOrADrawing) {
  View root({0, 0, 100, 100});
  int asked = 0;
  root.setInvalidationHandler([&] { ++asked; });
  const auto label = std::make_shared<Label>();
  label->setText("text");
  root.addSubview(label);
  root.layoutIfNeeded();
  const auto asks = [&](auto change) {
    asked = 0;
    change();
    return asked > 0;
  };
  EXPECT_TRUE(asks([&] { label->setText("other"); }));
  EXPECT_FALSE(asks([&] { label->setText("other"); }));
  EXPECT_TRUE(asks([&] { label->setHidden(true); }));
  EXPECT_FALSE(asks([&] { label->setHidden(true); }));
  EXPECT_TRUE(asks([&] { label->setTextColor(SemanticColor::systemGray); }));
  EXPECT_TRUE(asks([&] { label->setFrame({1, 1, 5, 5}); }));
  EXPECT_TRUE(asks([&] { label->setAlpha(0.2); }));
  EXPECT_TRUE(asks([&] { label->removeFromSuperview(); }));
  EXPECT_FALSE(asks([&] { label->setText("apart"); }));
}

TEST_F(ViewTest, AHitIsTheFrontmostVisibleView) {
  View root({10, 10, 100, 100});
  const auto back = std::make_shared<View>(Rect{0, 0, 50, 50});
  const auto front = std::make_shared<View>(Rect{20, 20, 50, 50});
  root.addSubview(back);
  root.addSubview(front);
  root.addSubview(root.subviews().front());
  root.addSubview(front);
  EXPECT_EQ(root.hitTest({30, 30}), front.get());
  EXPECT_EQ(root.hitTest({50, 10}), &root);
  EXPECT_EQ(root.hitTest({100, 10}), nullptr);
  front->setHidden(true);
  EXPECT_EQ(root.hitTest({30, 30}), back.get());
  back->addSubview(std::shared_ptr<View>(&root, [](View*) {}));
  EXPECT_EQ(root.superview(), nullptr) << "a view is not added to a view inside it";
}

}  // namespace
}  // namespace linewatch::ui
