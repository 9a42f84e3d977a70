#include "ui/label.h"

#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "ui/ui_fixture.h"

namespace linewatch::ui {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class LabelTest : public UiTest {
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

TEST_F(LabelTest, TextWrapsAndEndsInAnEllipsis) {
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

TEST_F(LabelTest, TextOfAnyKindIsMeasured) {
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

TEST_F(LabelTest, ALineIsAsTallAsItsLargestFontPlusTheSpacing) {
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

}  // namespace
}  // namespace linewatch::ui
