#include "presentation/label_extras.h"

#include "simulation/platform_test.h"

namespace linewatch {
namespace {

using LabelExtras = PlatformTest;

TEST_F(LabelExtras, ReadsTheLineSpacingOfTheFirstCharacterAndSetsItForAll) {
  ui::Label label;
  EXPECT_EQ(_rova_lineSpacing(label), 0);
  _rova_setLineSpacing(label, 4);
  label.setText("no style yet");
  EXPECT_EQ(_rova_lineSpacing(label), 0) << "an empty label keeps none";

  ui::AttributedText text("first ",
                          {.color = ui::SemanticColor::systemGray, .paragraphStyle = ui::ParagraphStyle{3}});
  text.append("second", {.paragraphStyle = ui::ParagraphStyle{7}});
  label.setAttributedText(text);
  EXPECT_EQ(_rova_lineSpacing(label), 3);
  _rova_setLineSpacing(label, 3);
  EXPECT_EQ(label.attributedText(), text) << "the same value changes nothing";
  _rova_setLineSpacing(label, 5);
  EXPECT_EQ(label.text(), "first second");
  ASSERT_FALSE(label.attributedText().runs().empty());
  for (const auto& run : label.attributedText().runs()) {
    EXPECT_EQ(run.attributes.paragraphStyle.value().lineSpacing, 5);
  }
  EXPECT_EQ(label.attributedText().runs().front().attributes.color, ui::Color(ui::SemanticColor::systemGray));
}

TEST_F(LabelExtras, TheLineSpacingMovesTheLinesApart) {
  const auto label = multiLineLabelWithFont(ui::Font(ui::TextStyle::title2));
  label->setText("a b c");
  const double width = label->font().pointSize();
  const double before = label->intrinsicHeight(width).value();
  _rova_setLineSpacing(*label, 5);
  EXPECT_EQ(label->intrinsicHeight(width), before + 2 * 5) << "three lines, two gaps";
}

}  // namespace
}  // namespace linewatch
