#include "ui/stack_view.h"

#include <memory>
#include <vector>

#include <gmock/gmock.h>

#include "ui/ui_fixture.h"

namespace linewatch::ui {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A view of 10 by 10 points; its baselines are its bottom.
std::shared_ptr<View> addSquare(StackView& stack) {
  auto view = std::make_shared<View>();
  stack.addArrangedSubview(view);
  view->heightAnchor().constraintEqualToConstant(10)->setActive(true);
  return view;
}

class StackViewTest : public UiTest {
 protected:
  StackViewTest() {
    stack_->setLaidOutByConstraints(true);
    stack_->setSpacing(15);
    root_.addSubview(stack_);
    LayoutConstraint::activate({stack_->leadingAnchor().constraintEqualTo(root_.leadingAnchor()),
                                stack_->topAnchor().constraintEqualTo(root_.topAnchor()),
                                stack_->widthAnchor().constraintEqualToConstant(40)});
    for (int i = 0; i < 3; ++i) views_.push_back(addSquare(*stack_));
  }

  std::vector<double> tops() {
    root_.layoutIfNeeded();
    std::vector<double> tops;
    for (const auto& view : views_) {
      EXPECT_EQ(view->frame().width, 40);
      tops.push_back(view->frame().y);
    }
    return tops;
  }

  View root_{{0, 0, 100, 100}};
  std::shared_ptr<StackView> stack_ = std::make_shared<StackView>();
  std::vector<std::shared_ptr<View>> views_;
};

TEST_F(StackViewTest, SpacesBaselinesAndLeavesHiddenViewsOut) {
  EXPECT_THAT(tops(), ElementsAre(0, 15, 30));
  EXPECT_EQ(stack_->frame(), (Rect{0, 0, 40, 40}));
  EXPECT_EQ(&stack_->viewForFirstBaselineLayout(), views_.front().get());
  views_[1]->setHidden(true);
  EXPECT_EQ(tops()[2], 15);
  views_[0]->setHidden(true);
  views_[1]->setHidden(false);
  EXPECT_EQ(tops()[1], 0);
  EXPECT_EQ(tops()[2], 15);
  EXPECT_EQ(&stack_->viewForFirstBaselineLayout(), views_[1].get());
  views_[0]->setHidden(false);
  stack_->setSpacing(18);
  EXPECT_THAT(tops(), ElementsAre(0, 18, 36));
  EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(StackViewTest, AViewThatLeavesTakesNoSpaceAndComesBackAtTheEnd) {
  const auto leaving = views_.front();
  root_.addSubview(leaving);
  views_.erase(views_.begin());
  EXPECT_THAT(tops(), ElementsAre(0, 15));
  stack_->addArrangedSubview(leaving);
  views_.push_back(leaving);
  EXPECT_THAT(tops(), ElementsAre(0, 15, 30));
  stack_->addArrangedSubview(leaving);
  EXPECT_THAT(tops(), ElementsAre(0, 15, 30)) << "a view that is arranged stays where it is";
  for (const auto& view : views_) view->removeFromSuperview();
  root_.layoutIfNeeded();
  EXPECT_EQ(&stack_->viewForLastBaselineLayout(), stack_.get());
  EXPECT_THAT(errors(), IsEmpty());
}

}  // namespace
}  // namespace linewatch::ui
