#include "presentation/dynamic_type_wizard.h"

#include <cmath>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "simulation/platform_test.h"
#include "ui/layout/layout_guide.h"

namespace linewatch {
namespace {

ui::Font headline() { return ui::Font::preferred(ui::TextStyle::headline); }
/// A font's scaling is in proportion to its size: 17 points for a headline at the default text size.
double scaledWithHeadline(double length) { return length * headline().pointSize() / 17; }
const FontProvider kHeadline = headline;
const FontProvider kNoFont = [] { return std::optional<ui::Font>(); };

class DynamicType : public PlatformTest {
 protected:
  void setTextSize(ui::TextSizeCategory category) {
    platform_->changeWorld([&](auto& world) { world.textSize = category; });
  }
};

/// Records the font and the lengths that it finds when it is called.
class Witness : public Object {
 public:
  explicit Witness(std::vector<std::string>& notes, std::string name = "")
      : notes_(notes), name_(std::move(name)) {}

  void first() { notes_.push_back(name_ + "first"); }
  void second() { notes_.push_back(name_ + "second"); }
  void look() {
    notes_.push_back("font " + std::string(nameOf(label->font().category())) + ", constant " +
                     std::to_string(std::lround(constraint->constant())) + ", spacing " +
                     std::to_string(std::lround(stack->spacing())));
  }
  void endOther() { DynamicTypeWizard::unregisterObject(other.lock()); }

  std::shared_ptr<ui::Label> label;
  ui::SharedConstraint constraint;
  std::shared_ptr<ui::StackView> stack;
  std::weak_ptr<Object> other;

 private:
  std::vector<std::string>& notes_;
  std::string name_;
};

TEST_F(DynamicType, AValueScalesWithItsFont) {
  setTextSize(ui::TextSizeCategory::AX3);
  DynamicTypeValue value(21, nullptr);
  EXPECT_EQ(value.scaledValue(), 21);
  value.setFontProvider(kNoFont);
  EXPECT_EQ(value.scaledValue(), 21);
  value.setFontProvider(kHeadline);
  EXPECT_DOUBLE_EQ(value.scaledValue(), scaledWithHeadline(21));
  value.setUnscaledValue(-2);
  EXPECT_DOUBLE_EQ(value.scaledValue(), scaledWithHeadline(-2));
}

TEST_F(DynamicType, GivesFontsAndLengthsAtOnceAndAtEachChange) {
  auto label = std::make_shared<ui::Label>();
  auto stack = std::make_shared<ui::StackView>();
  stack->setDisplayScale(3);
  auto view = std::make_shared<ui::View>();
  view->setDisplayScale(1);
  auto constraint = view->heightAnchor().constraintEqualToConstant(0);
  auto guide = std::make_shared<ui::LayoutGuide>();
  auto homeless = guide->heightAnchor().constraintEqualToConstant(0);

  setTextSize(ui::TextSizeCategory::XL);
  DynamicTypeWizard::autorefreshLabel(label, kHeadline);
  DynamicTypeWizard::autoscaleStackView(stack, 21, kHeadline);
  EXPECT_EQ(DynamicTypeWizard::autoscaledConstraint(constraint, 21, kHeadline), constraint);
  DynamicTypeWizard::autoscaledConstraint(homeless, 21, kHeadline);
  const auto expectNow = [&] {
    const double scaled = scaledWithHeadline(21);
    EXPECT_EQ(label->font(), headline());
    EXPECT_EQ(stack->spacing(), ui::snappedToPixel(scaled, 3));
    EXPECT_EQ(constraint->constant(), ui::snappedToPixel(scaled, 1));
    EXPECT_EQ(homeless->constant(), ui::snappedToPixel(scaled, 2)) << "the main display's grid";
  };
  expectNow();
  EXPECT_GT(stack->spacing(), 21);
  setTextSize(ui::TextSizeCategory::AX5);
  expectNow();
  view->addLayoutGuide(guide);
  setTextSize(ui::TextSizeCategory::XS);
  EXPECT_EQ(homeless->constant(), ui::snappedToPixel(scaledWithHeadline(21), 1))
      << "the pixel grid of the guide's view";
}

TEST_F(DynamicType, DoesNothingWithoutAProviderAndReplacesEarlierRegistrations) {
  auto label = std::make_shared<ui::Label>();
  auto stack = std::make_shared<ui::StackView>();
  ui::View view;
  auto constraint = view.heightAnchor().constraintEqualToConstant(5);
  stack->setSpacing(6);
  EXPECT_EQ(DynamicTypeWizard::autoscaledConstraint(constraint, 21, nullptr), constraint);
  DynamicTypeWizard::autoscaleStackView(stack, 21, nullptr);
  DynamicTypeWizard::updateUnscaledConstantValue(21, kHeadline, constraint);
  setTextSize(ui::TextSizeCategory::AX1);
  EXPECT_EQ(constraint->constant(), 5);
  EXPECT_EQ(stack->spacing(), 6);

  const auto footnote = [] { return ui::Font::preferred(ui::TextStyle::footnote); };
  DynamicTypeWizard::autorefreshLabel(label, footnote);
  DynamicTypeWizard::autorefreshLabel(label, nullptr);
  DynamicTypeWizard::autoscaledConstraint(constraint, 10, kHeadline);
  DynamicTypeWizard::autoscaledConstraint(constraint, 20, kNoFont);
  EXPECT_EQ(constraint->constant(), 20);
  setTextSize(ui::TextSizeCategory::AX2);
  EXPECT_EQ(label->font(), footnote()) << "the registration stays";
  EXPECT_EQ(constraint->constant(), 20);
  DynamicTypeWizard::updateUnscaledConstantValue(40, kHeadline, constraint);
  EXPECT_EQ(constraint->constant(), view.snappedToPixel(scaledWithHeadline(40)));
  DynamicTypeWizard::updateUnscaledConstantValue(41, nullptr, constraint);
  setTextSize(ui::TextSizeCategory::L);
  EXPECT_EQ(constraint->constant(), 41);
}

TEST_F(DynamicType, RunsOrderZeroAfterFontsAndLaterOrdersAfterLengths) {
  std::vector<std::string> notes;
  auto witness = std::make_shared<Witness>(notes);
  ui::View view;
  witness->label = std::make_shared<ui::Label>();
  witness->stack = std::make_shared<ui::StackView>();
  witness->constraint = view.heightAnchor().constraintEqualToConstant(0);
  // Registered in the reverse order of the calls.
  DynamicTypeWizard::makeObject(witness, &Witness::second, 2);
  DynamicTypeWizard::makeObject(witness, &Witness::look, 1);
  DynamicTypeWizard::makeObject(witness, &Witness::look, 0);
  DynamicTypeWizard::makeObject(witness, &Witness::first, 3);
  DynamicTypeWizard::makeObject(witness, static_cast<void (Witness::*)()>(nullptr), 0);
  DynamicTypeWizard::autoscaleStackView(witness->stack, 100, kHeadline);
  DynamicTypeWizard::autoscaledConstraint(witness->constraint, 100, kHeadline);
  DynamicTypeWizard::autorefreshLabel(witness->label, kHeadline);
  EXPECT_TRUE(notes.empty()) << "registering runs nothing";

  setTextSize(ui::TextSizeCategory::AX5);
  const auto grown = std::to_string(std::lround(scaledWithHeadline(100)));
  EXPECT_EQ(notes,
            (std::vector<std::string>{"font AX5, constant 100, spacing 100",
                                      "font AX5, constant " + grown + ", spacing " + grown, "second"}));

  notes.clear();
  DynamicTypeWizard::makeObject(witness, &Witness::first, 2);
  DynamicTypeWizard::makeObject(witness, &Witness::first, 0);
  DynamicTypeWizard::unregisterObject(witness->label);
  setTextSize(ui::TextSizeCategory::AX4);
  EXPECT_EQ(notes.size(), 3U);
  EXPECT_EQ(notes.front(), "first") << "the later operation replaces the earlier one";
  EXPECT_EQ(notes.back(), "first");
  EXPECT_EQ(witness->label->font(), headline()) << "a label keeps its font's registration";

  notes.clear();
  DynamicTypeWizard::unregisterObject(witness);
  setTextSize(ui::TextSizeCategory::L);
  EXPECT_TRUE(notes.empty());
  EXPECT_EQ(witness->stack->spacing(), 100) << "the spacing stays registered too";
}

TEST_F(DynamicType, DoesNotTellAnObjectUnregisteredMeanwhile) {
  std::vector<std::string> notes;
  auto ending = std::make_shared<Witness>(notes), ended = std::make_shared<Witness>(notes);
  ending->other = ended;
  DynamicTypeWizard::makeObject(ending, &Witness::endOther, 0);
  DynamicTypeWizard::makeObject(ended, &Witness::first, 0);
  DynamicTypeWizard::makeObject(ended, &Witness::second, 1);
  setTextSize(ui::TextSizeCategory::S);
  EXPECT_TRUE(notes.empty());
  MakeObjectsPerformSelectorWithMap(nullptr);
}

TEST_F(DynamicType, KeepsNothingAlive) {
  std::vector<std::string> notes;
  int fontsAsked = 0;
  const FontProvider counting = [&] {
    ++fontsAsked;
    return std::optional(headline());
  };
  auto label = std::make_shared<ui::Label>();
  auto stack = std::make_shared<ui::StackView>();
  auto view = std::make_shared<ui::View>();
  auto constraint = view->heightAnchor().constraintEqualToConstant(0);
  auto witness = std::make_shared<Witness>(notes);
  DynamicTypeWizard::autorefreshLabel(label, counting);
  DynamicTypeWizard::autoscaleStackView(stack, 21, counting);
  DynamicTypeWizard::autoscaledConstraint(constraint, 21, counting);
  DynamicTypeWizard::makeObject(witness, &Witness::first, 1);
  view.reset();
  setTextSize(ui::TextSizeCategory::XL);
  EXPECT_EQ(fontsAsked, 6) << "once at registration and once per change, even if a constraint's view is gone";
  const std::vector<std::weak_ptr<Object>> registered = {label, stack, constraint, witness};
  label.reset();
  stack.reset();
  constraint.reset();
  witness.reset();
  for (const auto& object : registered) EXPECT_TRUE(object.expired());
  notes.clear();
  setTextSize(ui::TextSizeCategory::XXL);
  EXPECT_EQ(fontsAsked, 6);
  EXPECT_TRUE(notes.empty());
}

TEST_F(DynamicType, AProviderIsDestroyedWithItsLabelAndReplacedByALaterOne) {
  auto held = std::make_shared<int>(0);
  const std::weak_ptr<int> provider = held;
  const auto holding = [](std::shared_ptr<int> token) -> FontProvider {
    return [token = std::move(token)] { return headline(); };
  };
  auto label = std::make_shared<ui::Label>();
  DynamicTypeWizard::autorefreshLabel(label, holding(std::move(held)));
  label.reset();
  EXPECT_TRUE(provider.expired()) << "with its label";

  held = std::make_shared<int>(0);
  const std::weak_ptr<int> earlier = held;
  auto stack = std::make_shared<ui::StackView>();
  DynamicTypeWizard::autoscaleStackView(stack, 21, holding(std::move(held)));
  DynamicTypeWizard::autoscaleStackView(stack, 42, kHeadline);
  EXPECT_TRUE(earlier.expired());
  EXPECT_EQ(stack->spacing(), 42);

  held = std::make_shared<int>(0);
  const std::weak_ptr<int> ofConstraint = held;
  auto constraint = stack->heightAnchor().constraintEqualToConstant(0);
  DynamicTypeWizard::autoscaledConstraint(constraint, 21, holding(std::move(held)));
  constraint.reset();
  EXPECT_TRUE(ofConstraint.expired());
}

TEST_F(DynamicType, AProviderMayRegisterOthersWhileItRuns) {
  std::vector<std::shared_ptr<ui::Label>> registered;
  const FontProvider registering = [&, marker = std::string(100, 'x')] {
    for (int i = 0; i < 100; ++i) {
      registered.push_back(std::make_shared<ui::Label>());
      DynamicTypeWizard::autorefreshLabel(registered.back(), kHeadline);
    }
    return marker == std::string(100, 'x') ? std::optional(headline()) : std::nullopt;
  };
  auto label = std::make_shared<ui::Label>();
  auto stack = std::make_shared<ui::StackView>();
  auto constraint = stack->heightAnchor().constraintEqualToConstant(0);
  DynamicTypeWizard::autorefreshLabel(label, registering);
  DynamicTypeWizard::autoscaleStackView(stack, 17, registering);
  DynamicTypeWizard::autoscaledConstraint(constraint, 17, registering);
  setTextSize(ui::TextSizeCategory::AX5);
  EXPECT_EQ(label->font(), headline());
  EXPECT_EQ(stack->spacing(), headline().pointSize());
  EXPECT_EQ(constraint->constant(), headline().pointSize());
  EXPECT_EQ(registered.size(), 600U);
  for (const auto& each : registered) EXPECT_EQ(each->font(), headline());
}

TEST_F(DynamicType, StartsAfreshWithEachPlatform) {
  auto label = std::make_shared<ui::Label>();
  DynamicTypeWizard::autorefreshLabel(label, kHeadline);
  install();
  setTextSize(ui::TextSizeCategory::AX5);
  EXPECT_EQ(label->font().category(), ui::TextSizeCategory::L);
  DynamicTypeWizard::autorefreshLabel(label, kHeadline);
  setTextSize(ui::TextSizeCategory::AX1);
  EXPECT_EQ(label->font().category(), ui::TextSizeCategory::AX1);
}

}  // namespace
}  // namespace linewatch
