#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "simulation/roles/recording_canvas.h"
#include "simulation/roles/simulated_host.h"
#include "ui/label.h"
#include "ui/notification_center.h"
#include "ui/sample_row.h"
#include "ui/ui_fixture.h"
#include "ui/view_controller.h"

namespace linewatch::ui {
namespace {

using simulation::RecordingCanvas;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class ContentTest : public UiTest {
 protected:
  static std::shared_ptr<Label> makeLabel(const std::string& text, std::size_t lines = 0) {
    auto label = std::make_shared<Label>();
    label->setFont(Font(TextStyle::caption2));  // 11 points: a character is 5.5 wide
    label->setNumberOfLines(lines);
    label->setText(text);
    return label;
  }

  static std::vector<std::string> linesOf(Label& label) {
    std::vector<std::string> lines;
    const auto layout = label.displayedLayout();
    for (const TextLine& line : layout->lines) {
      lines.push_back(label.text().substr(line.begin, line.end - line.begin) + (line.truncated ? "..." : ""));
    }
    return lines;
  }

  static std::vector<std::string> linesIn(const std::string& text, double width, double height = 1000,
                                          std::size_t lines = 0,
                                          LineBreakMode mode = LineBreakMode::wordWrapping) {
    const auto label = makeLabel(text, lines);
    label->setLineBreakMode(mode);
    label->setFrame({0, 0, width, height});
    return linesOf(*label);
  }
};

TEST_F(ContentTest, TextWrapsAndEndsInAnEllipsis) {
  EXPECT_THAT(linesIn("aaa bbb ccc", 38.5), ElementsAre("aaa bbb", "ccc"));
  EXPECT_THAT(linesIn("aaa bbb ccc", 38), ElementsAre("aaa", "bbb", "ccc"));
  EXPECT_THAT(linesIn("aaa   bbb", 20), ElementsAre("aaa", "bbb"));
  EXPECT_THAT(linesIn("aaaaaaa b", 16.5), ElementsAre("aaa", "aaa", "a b"));
  EXPECT_THAT(linesIn("one\n\ntwo", 100), ElementsAre("one", "", "two"));
  EXPECT_THAT(linesIn("aaa bbb ccc", 22, 1000, 2), ElementsAre("aaa", "bbb..."));
  EXPECT_THAT(linesIn("aaa bbb ccc", 22, 12), ElementsAre("aaa..."));
  EXPECT_THAT(linesIn("aaa bbb ccc", 22, 24), ElementsAre("aaa", "bbb..."));
  EXPECT_THAT(linesIn("aaa bbb", 22, 1000, 0, LineBreakMode::truncatingTail), ElementsAre("aaa..."));
  EXPECT_THAT(linesIn("aaa bbb", 22, 1000, 0, LineBreakMode::clipping), ElementsAre("aaa bbb"));
  EXPECT_THAT(linesIn("aaa", 22, 4), IsEmpty()) << "too little of the line would be seen";
  EXPECT_THAT(linesIn("aaa", 0), IsEmpty());
  EXPECT_THAT(linesIn("", 10), IsEmpty());
}

TEST_F(ContentTest, TextOfAnyKindIsMeasured) {
  const std::string marks = "e\xCC\x81\xCC\x81\xCC\x81o";
  EXPECT_THAT(linesIn(marks, 11), ElementsAre("e\xCC\x81\xCC\x81\xCC\x81", "o"))
      << "marks stay with their letter";
  EXPECT_THAT(linesIn("\xFF\xC3(\xE2\x82", 200), SizeIs(1));
  std::string words;
  while (words.size() < 100000) words += "word ";
  for (const std::string& text : {std::string(100000, 'x'), words, std::string(100000, ' '),
                                  std::string(100000, '\n'), "e" + std::string(100000, '\xCC')}) {
    const auto label = makeLabel(text);
    EXPECT_GE(label->intrinsicWidth().value_or(-1), 0);
    EXPECT_GT(label->intrinsicHeight(327).value_or(-1), 0);
    EXPECT_GT(label->intrinsicHeight(1).value_or(-1), 0);
    label->setFrame({0, 0, 327, 50});
    EXPECT_LE(linesOf(*label).size(), 5U);
  }
  for (const double width : {std::numeric_limits<double>::quiet_NaN(), -5.0, 0.0}) {
    EXPECT_EQ(makeLabel("text")->intrinsicHeight(width), 0);
  }
  EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(ContentTest, ALineIsAsTallAsItsLargestFontAndTheSpacingSays) {
  AttributedText text("a ", {Font(TextStyle::caption2), {}, {}});
  text.append("b", {Font(TextStyle::body), {}, {}});
  text.append("\nc", {Font(TextStyle::body), {}, {}});
  text.setParagraphStyle({10});
  const auto label = makeLabel("");
  label->setAttributedText(text);
  EXPECT_EQ(label->intrinsicWidth(), 19.5);
  EXPECT_EQ(label->intrinsicHeight(100), 14 + 27 + 3.5);
  EXPECT_EQ(label->firstBaselineFromTop(), 14);
  EXPECT_EQ(label->lastBaselineFromBottom(), 3.5);
  label->setText("other");
  EXPECT_EQ(label->attributedText().paragraphStyle(), ParagraphStyle{10}) << "a new text keeps the style";
  label->setText(std::nullopt);
  EXPECT_EQ(label->intrinsicHeight(100), 0);
  EXPECT_EQ(label->firstBaselineFromTop(), 0);
  EXPECT_EQ(label->attributedText().paragraphStyle(), std::nullopt);
}

TEST_F(ContentTest, ALargerTextSizeIsAnnouncedAndScalesFonts) {
  EXPECT_EQ(Font::preferred(TextStyle::headline).pointSize(), 17);
  EXPECT_EQ(Font::preferred(TextStyle::headline).scaledValue(21), 21);
  int announced = 0;
  const auto observer = std::make_shared<LayoutGuide>();
  platform_->notificationCenter().addObserver(observer, kTextSizeDidChangeNotification, [&] { ++announced; });
  platform_->changeWorld([](simulation::World& world) { world.textSize = ui::TextSizeCategory::AX3; });
  platform_->changeWorld([](simulation::World& world) { world.lockState = 1; });
  EXPECT_EQ(announced, 1);
  EXPECT_GT(Font::preferred(TextStyle::headline).scaledValue(21), 42);
  for (const auto style : {TextStyle::largeTitle, TextStyle::headline, TextStyle::caption2}) {
    double before = 0;
    for (const std::string_view name : kTextSizeCategoryNames) {
      const double size = pointSize(style, *textSizeCategoryNamed(name));
      EXPECT_GE(size, std::max(before, 11.0));
      before = size;
    }
  }
  EXPECT_EQ(textSizeCategoryNamed("huge"), std::nullopt);
}

TEST_F(ContentTest, ObserversAreCalledInOrderUntilTheyEndOrGo) {
  NotificationCenter center;
  std::vector<std::string> calls;
  auto one = std::make_shared<LayoutGuide>();
  auto two = std::make_shared<LayoutGuide>();
  center.addObserver(one, "event", [&] {
    calls.push_back("one");
    center.removeObserver(*two);
    center.addObserver(one, "event", [&] { calls.push_back("late"); });
  });
  center.addObserver(two, "event", [&] { calls.push_back("two"); });
  center.addObserver(one, "other", [&] { calls.push_back("other"); });
  center.post("event");
  EXPECT_THAT(calls, ElementsAre("one"));
  calls.clear();
  one.reset();
  center.post("event");
  center.post("other");
  EXPECT_THAT(calls, IsEmpty());
}

TEST_F(ContentTest, ViewsDrawWhatCanBeSeen) {
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

TEST_F(ContentTest, ImagesShrinkInProportionAndMissingOnesAreLeftOut) {
  platform_->changeWorld([](simulation::World& world) { world.missingImages = {"gone"}; });
  ImageSource& images = platform_->imageSource();
  for (int i = 0; i < 2; ++i) EXPECT_EQ(images.imageNamed("gone"), nullptr);
  EXPECT_THAT(errors(), ElementsAre(HasSubstr("gone")));
  ImageView view;
  view.setImage(images.imageNamed("gone"));
  EXPECT_EQ(view.intrinsicWidth(), 0);
  view.setFrame({0, 0, 30, 10});
  RecordingCanvas canvas({100, 100});
  view.render(canvas);
  view.setImage(images.imageNamed("there"));
  view.render(canvas);
  ASSERT_THAT(canvas.drawn(), SizeIs(1));
  EXPECT_EQ(canvas.drawn()[0].rect, (Rect{10, 0, 10, 10}));
}

TEST_F(ContentTest, AChangeAsksTheWindowForALayoutOrADrawing) {
  View root({0, 0, 100, 100});
  int asked = 0;
  root.setInvalidationHandler([&] { ++asked; });
  const auto label = makeLabel("text");
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

TEST_F(ContentTest, AHitIsTheFrontmostViewThatCanBeSeen) {
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
  EXPECT_EQ(root.superview(), nullptr) << "a view does not go into what it contains";
}

class Controller final : public ViewController {
 public:
  std::shared_ptr<ExtensionContext> extensionContext() const override { return nullptr; }
  void viewDidLoad() override { view().setFrame({0, 0, 10, 10}); }
};

TEST_F(ContentTest, AControllerLoadsItsViewOnce) {
  Controller controller;
  EXPECT_FALSE(controller.isViewLoaded());
  View& view = controller.view();
  EXPECT_EQ(view.frame().width, 10);
  EXPECT_EQ(&controller.view(), &view);
  std::vector<Size> sizes;
  controller.setPreferredContentSizeHandler([&](const Size& size) { sizes.push_back(size); });
  controller.setPreferredContentSize({359, 220});
  controller.setPreferredContentSize({359, 220});
  EXPECT_THAT(sizes, SizeIs(2));
  EXPECT_EQ(controller.preferredContentSize(), (Size{359, 220}));
}

}  // namespace
}  // namespace linewatch::ui
