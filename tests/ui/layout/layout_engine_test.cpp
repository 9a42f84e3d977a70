#include "ui/layout/layout_engine.h"

#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "simulation/platform_test.h"
#include "ui/layout/sample_box.h"

namespace linewatch::ui {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class LayoutEngineTest : public PlatformTest {
 protected:
  std::vector<std::string> errors() { return platform_->transcript().logTexts("error"); }
  Rect laidOut(const SampleBox& box) {
    root_.layOut();
    return box.frame();
  }
  /// Two texts below each other, 12 from baseline to baseline, between the edges of the root.
  void addTexts(int firstLines, int secondLines) {
    first_ = root_.add(firstLines);
    second_ = root_.add(secondLines);
    LayoutConstraint::activate(
        {first_->topAnchor().constraintGreaterThanOrEqualTo(root_.topAnchor()),
         second_->bottomAnchor().constraintLessThanOrEqualTo(root_.bottomAnchor()),
         second_->firstBaselineAnchor().constraintEqualTo(first_->lastBaselineAnchor(), 12),
         first_->leadingAnchor().constraintEqualTo(root_.leadingAnchor()),
         second_->leadingAnchor().constraintEqualTo(root_.leadingAnchor())});
  }

  SampleBox root_{{0, 0, 100, 60}};
  std::shared_ptr<SampleBox> first_, second_;
};

TEST_F(LayoutEngineTest, PlacesBoxesAndGuidesByEdgesCentresAndSizes) {
  const auto outer = root_.add();
  const auto inner = outer->add();
  const auto guide = std::make_shared<LayoutGuide>();
  outer->addLayoutGuide(guide);
  LayoutConstraint::activate({outer->leadingAnchor().constraintEqualTo(root_.leadingAnchor(), 10),
                              outer->trailingAnchor().constraintEqualTo(root_.trailingAnchor(), -20),
                              outer->topAnchor().constraintEqualTo(root_.topAnchor(), 4),
                              outer->bottomAnchor().constraintEqualTo(root_.bottomAnchor()),
                              inner->leadingAnchor().constraintEqualTo(outer->leadingAnchor(), 20),
                              inner->centerYAnchor().constraintEqualTo(root_.centerYAnchor()),
                              inner->widthAnchor().constraintEqualToConstant(30),
                              inner->heightAnchor().constraintEqualToConstant(20),
                              guide->leadingAnchor().constraintEqualTo(inner->trailingAnchor()),
                              guide->trailingAnchor().constraintEqualTo(outer->trailingAnchor()),
                              guide->topAnchor().constraintEqualTo(inner->topAnchor()),
                              guide->heightAnchor().constraintEqualToConstant(7)});
  EXPECT_EQ(laidOut(*outer), (Rect{10, 4, 70, 56}));
  EXPECT_EQ(inner->frame(), (Rect{20, 16, 30, 20})) << "in the outer box";
  EXPECT_EQ(guide->layoutFrame(), (Rect{50, 16, 20, 7}));

  root_.direction = LayoutDirection::rightToLeft;
  EXPECT_EQ(laidOut(*outer), (Rect{20, 4, 70, 56}));
  EXPECT_EQ(inner->frame(), (Rect{20, 16, 30, 20}));
  EXPECT_EQ(guide->layoutFrame(), (Rect{0, 16, 20, 7}));
  root_.direction = LayoutDirection::leftToRight;
  root_.resize({120.3, 60});
  EXPECT_EQ(laidOut(*outer).width, 90.5) << "on the pixel grid";
  EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(LayoutEngineTest, TextsStandOnBaselinesAndGiveTheRootItsHeight) {
  addTexts(1, 2);
  LayoutConstraint::activate({first_->topAnchor().constraintEqualTo(root_.topAnchor()),
                              second_->bottomAnchor().constraintEqualTo(root_.bottomAnchor())});
  EXPECT_EQ(root_.fitting({100, 0}), (Size{100, 32}));
  second_->lines = 3;
  second_->invalidateIntrinsicContentSize();
  EXPECT_EQ(root_.fitting({100, 0}), (Size{100, 42}));
  root_.resize({100, 42});
  EXPECT_EQ(laidOut(*first_), (Rect{0, 0, 0, 10}));
  EXPECT_EQ(second_->frame().y, 12);
  EXPECT_EQ(second_->questions, 2) << "asked only for a new content";
}

TEST_F(LayoutEngineTest, TextLosesWholeLinesFromItsEndAndGetsThemBack) {
  addTexts(1, 9);
  first_->topAnchor().constraintEqualTo(root_.topAnchor())->setActive(true);
  EXPECT_EQ(laidOut(*first_).height, 10);
  EXPECT_EQ(second_->frame(), (Rect{0, 12, 0, 40})) << "four lines of 48 points";
  root_.resize({100, 200});
  EXPECT_EQ(laidOut(*second_).height, 90);
}

TEST_F(LayoutEngineTest, TheFirstTextKeepsItsFirstLineInsideTheRoot) {
  addTexts(2, 3);
  const auto offset = first_->firstBaselineAnchor().constraintEqualTo(root_.topAnchor(), 70);
  LayoutConstraint::activate({offset, root_.heightAnchor().constraintEqualToConstant(60),
                              first_->bottomAnchor().constraintLessThanOrEqualTo(root_.bottomAnchor())});
  EXPECT_EQ(laidOut(*first_), (Rect{0, 50, 0, 10})) << "as low as the root allows";
  EXPECT_EQ(second_->frame().height, 0);
  first_->hidden = true;
  EXPECT_NE(laidOut(*first_), (Rect{0, 50, 0, 10})) << "a hidden text is left to its constraints";
  first_->hidden = false;
  offset->setConstant(8);
  EXPECT_EQ(laidOut(*first_), (Rect{0, 0, 0, 20}));
  EXPECT_EQ(second_->frame(), (Rect{0, 22, 0, 30}));
}

TEST_F(LayoutEngineTest, OfContradictingConstraintsTheOneMadeLastIsLeftOutAndLoggedOnce) {
  const auto box = root_.add();
  const auto older = box->widthAnchor().constraintEqualToConstant(30);
  const auto younger = box->widthAnchor().constraintEqualToConstant(40);
  younger->setActive(true);
  older->setActive(true);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(laidOut(*box).width, 30);
    EXPECT_THAT(errors(), ElementsAre(HasSubstr("is left out: SampleBox.width == 40")));
    younger->setActive(false);
    root_.layOut();
    younger->setActive(true);
  }
  older->setActive(false);
  EXPECT_EQ(laidOut(*box).width, 40);
}

TEST_F(LayoutEngineTest, ABoxWithAGivenFrameStaysWhereItIs) {
  const auto fixed = root_.add();
  const auto placed = root_.add();
  fixed->setLaidOutByConstraints(false);
  fixed->resize({50, 20});
  placed->leadingAnchor().constraintEqualTo(fixed->trailingAnchor(), 3)->setActive(true);
  EXPECT_EQ(laidOut(*placed).x, 53);
  EXPECT_EQ(fixed->frame(), (Rect{0, 0, 50, 20}));
  root_.direction = LayoutDirection::rightToLeft;
  EXPECT_EQ(laidOut(*placed).maxX(), -3) << "its trailing edge is now the left one";
}

TEST_F(LayoutEngineTest, BoxesThatNameEachOtherForTheirBaselinesAreLaidOut) {
  const auto one = root_.add(1);
  const auto other = root_.add(1);
  one->baselineBox = other.get();
  other->firstBaselineAnchor().constraintEqualTo(root_.topAnchor(), 20)->setActive(true);
  one->firstBaselineAnchor().constraintEqualTo(root_.topAnchor(), 20)->setActive(true);
  EXPECT_EQ(laidOut(*other).y, 12);
  other->baselineBox = one.get();
  one->firstBaselineAnchor().constraintEqualTo(root_.topAnchor(), 30)->setActive(true);
  root_.layOut();
}

// ---- Constraints ----

TEST_F(LayoutEngineTest, AConstraintEndsWhenAnItemLeavesOrIsDestroyed) {
  auto box = root_.add();
  const auto size = box->widthAnchor().constraintEqualToConstant(30);
  const auto edge = box->leadingAnchor().constraintEqualTo(root_.leadingAnchor());
  LayoutConstraint::activate({size, edge});
  EXPECT_EQ(laidOut(*box).width, 30);
  const auto inner = box->add();
  const auto across = inner->leadingAnchor().constraintEqualTo(root_.leadingAnchor());
  across->setActive(true);
  inner->leave();
  EXPECT_FALSE(across->isActive());
  box->leave();
  EXPECT_FALSE(edge->isActive());
  EXPECT_TRUE(size->isActive()) << "it has no item outside the box";
  root_.layOut();
  edge->setActive(true);
  edge->setActive(true);
  EXPECT_FALSE(edge->isActive());
  EXPECT_THAT(errors(), ElementsAre(HasSubstr("stays inactive: SampleBox.leading == SampleBox.leading + 0")));
  box.reset();
  EXPECT_FALSE(size->isActive());
  EXPECT_EQ(size->firstItem(), nullptr);
  size->setConstant(3);
  size->setActive(true);
  EXPECT_FALSE(size->isActive());
}

TEST_F(LayoutEngineTest, AGuideBelongsToTheFirstBoxThatItIsAddedTo) {
  const auto box = root_.add();
  const auto guide = std::make_shared<LayoutGuide>();
  const auto width = guide->widthAnchor().constraintEqualToConstant(5);
  width->setActive(true);
  EXPECT_FALSE(width->isActive()) << "the guide is in no tree yet";
  box->addLayoutGuide(guide);
  root_.addLayoutGuide(guide);
  EXPECT_EQ(guide->owningBox(), box.get());
  width->setActive(true);
  root_.layOut();
  EXPECT_EQ(guide->layoutFrame().width, 5);
  box->leave();
}

TEST_F(LayoutEngineTest, AConstantThatIsNotFiniteIsLeftOutUntilItIs) {
  const auto box = root_.add();
  const auto width = box->widthAnchor().constraintEqualToConstant(30);
  width->setActive(true);
  root_.layOut();
  for (const double bad :
       {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
    width->setConstant(bad);
    EXPECT_GE(laidOut(*box).width, 0);
  }
  EXPECT_THAT(errors(), SizeIs(1));
  width->setConstant(20);
  EXPECT_EQ(laidOut(*box).width, 20);
}

}  // namespace
}  // namespace linewatch::ui
