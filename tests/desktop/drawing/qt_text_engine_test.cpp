#include "desktop/drawing/qt_text_engine.h"

#include <cmath>
#include <ctime>
#include <limits>
#include <string>

#include <gmock/gmock.h>

#include "desktop/drawing/offscreen.h"

namespace linewatch::desktop {
namespace {

using testing::DoubleNear;
using ui::AttributedText;
using ui::LayoutDirection;
using ui::LineBreakMode;
using ui::TextLayoutRequest;
using ui::TextStyle;

std::string repeated(std::string_view piece, std::size_t bytes) {
  std::string text;
  while (text.size() < bytes) text += piece;
  return text;
}

class TextEngine : public testing::Test {
 protected:
  static void SetUpTestSuite() { needOffscreenApplication(); }

  std::shared_ptr<const ui::ShapedText> shape(std::string text) {
    return engine_.shape(AttributedText(std::move(text)), body_);
  }
  std::shared_ptr<const ui::TextLayout> layOut(std::string text, const TextLayoutRequest& request) {
    return shape(std::move(text))->layOut(request);
  }
  double widthOf(std::string text) { return shape(std::move(text))->naturalWidth(); }

  QtTextEngine engine_;
  const ui::Font body_{TextStyle::body};
  const std::string sentence_ = "No service between Harbour and North Gate until further notice";
};

TEST_F(TextEngine, MetricsAreThoseOfLatinText) {
  for (const ui::Font& font : {body_, ui::Font(TextStyle::caption2), ui::Font(TextStyle::largeTitle)}) {
    const ui::FontMetrics metrics = engine_.metrics(font);
    const double size = font.pointSize();
    EXPECT_THAT(metrics.capHeight, DoubleNear(0.72 * size, 0.06 * size));
    EXPECT_GT(metrics.ascent, metrics.capHeight);
    EXPECT_THAT(metrics.ascent + metrics.descent, DoubleNear(1.2 * size, 0.15 * size));
  }
}

TEST_F(TextEngine, BoldHeadlinesAreHeavierThanHeadlinesAndText) {
  const auto widthIn = [&](const ui::Font& font) {
    return engine_.shape(AttributedText(sentence_), font)->naturalWidth();
  };
  const double headline = widthIn(ui::Font(TextStyle::headline));
  EXPECT_GT(headline, widthIn(body_)) << "both are equally large";
  EXPECT_GT(widthIn(ui::Font(TextStyle::headline, {.bold = true})), headline);
}

TEST_F(TextEngine, TextHasTheSameWidthAtEveryScale) {
  const double width = widthOf(sentence_);
  for (const double scale : {1.0, 1.5, 2.0, 3.0}) {
    const auto exact = layOut(sentence_, {.width = width, .scale = scale});
    const auto narrower = layOut(sentence_, {.width = width - 1, .scale = scale});
    ASSERT_EQ(exact->lines.size(), 1);
    EXPECT_EQ(narrower->lines.size(), 2);
    EXPECT_DOUBLE_EQ(exact->size.width, width);
  }
  EXPECT_EQ(shape("a\nbbb\nbb")->naturalWidth(), widthOf("bbb"));
}

TEST_F(TextEngine, BaselinesAreOnThePixelGrid) {
  for (const double scale : {1.0, 1.5, 2.0, 3.0}) {
    const auto layout = layOut("HHHH HHHH", {.width = widthOf("HHHHH"), .scale = scale});
    ASSERT_EQ(layout->lines.size(), 2);
    Sheet sheet(100, 60, scale);
    sheet.canvas().drawText(*layout, {0, 0}, ui::RGBA{0, 0, 0});
    for (const ui::TextLine& line : layout->lines) {
      const double pixels = line.baseline * scale;
      EXPECT_EQ(pixels, std::round(pixels));
      EXPECT_TRUE(sheet.hasInk(static_cast<int>(pixels) - 1));
      EXPECT_FALSE(sheet.hasInk(static_cast<int>(pixels)));
    }
  }
}

TEST_F(TextEngine, WrapsBetweenWordsOrInsideLongWords) {
  const auto words = layOut(sentence_, {.width = 160});
  ASSERT_GE(words->lines.size(), 3);
  std::string joined;
  for (const ui::TextLine& line : words->lines) {
    EXPECT_LE(line.width, 160);
    joined += (joined.empty() ? "" : " ") + sentence_.substr(line.begin, line.end - line.begin);
  }
  EXPECT_EQ(joined, sentence_);

  const auto characters = layOut(repeated("x", 50), {.width = 100});
  EXPECT_GE(characters->lines.size(), 3);
  const auto narrow = layOut("xyz", {.width = 0.5});
  EXPECT_EQ(narrow->lines.size(), 3);

  const auto paragraphs = layOut("one\r\ntwo\n\nthree", {});
  ASSERT_EQ(paragraphs->lines.size(), 4);
  EXPECT_EQ(paragraphs->lines[1].begin, 5);
  EXPECT_EQ(paragraphs->lines[1].end, 8);
  EXPECT_EQ(paragraphs->lines[2].width, 0);
  EXPECT_EQ(paragraphs->lines[3].begin, 10);
}

TEST_F(TextEngine, TruncatedTextEndsInAnEllipsis) {
  for (const double width : {90.0, 160.0, 233.0}) {
    for (const std::size_t limit : {1U, 2U, 3U}) {
      const auto layout = layOut(sentence_, {.width = width, .maximumNumberOfLines = limit});
      if (layOut(sentence_, {.width = width})->lines.size() <= limit) continue;
      ASSERT_EQ(layout->lines.size(), limit);
      const ui::TextLine& last = layout->lines.back();
      EXPECT_TRUE(last.truncated);
      EXPECT_GT(last.end, last.begin);
      EXPECT_NE(sentence_[last.end - 1], ' ');
      EXPECT_LE(last.width, width + 0.02);
      EXPECT_GT(last.width, width - 25);
      for (std::size_t i = 0; i + 1 < limit; ++i) EXPECT_FALSE(layout->lines[i].truncated);
    }
  }
}

TEST_F(TextEngine, LimitsTheNumberOfLines) {
  const TextLayoutRequest tail{.width = 120, .lineBreakMode = LineBreakMode::truncatingTail};
  EXPECT_TRUE(layOut(sentence_, tail)->lines.at(0).truncated);
  EXPECT_FALSE(layOut("Short", tail)->lines.at(0).truncated);
  EXPECT_TRUE(layOut("One\ntwo", tail)->lines.at(0).truncated);
  EXPECT_FALSE(layOut("One\n \n", tail)->lines.at(0).truncated);
  const auto ellipsisOnly = layOut(sentence_, {.width = 1, .lineBreakMode = LineBreakMode::truncatingTail});
  EXPECT_EQ(ellipsisOnly->lines.at(0).end, 0);

  const auto clipped = layOut(sentence_, {.width = 120, .lineBreakMode = LineBreakMode::clipping});
  ASSERT_EQ(clipped->lines.size(), 1);
  EXPECT_EQ(clipped->lines[0].width, widthOf(sentence_));

  const auto unlimited = layOut(sentence_, {.width = 120});
  for (const std::size_t lines : {1U, 2U, 3U}) {
    const double height = unlimited->lines[lines - 1].baseline + std::ceil(unlimited->lines[0].descent);
    EXPECT_EQ(layOut(sentence_, {.width = 120, .maximumHeight = height})->lines.size(), lines);
    EXPECT_EQ(layOut(sentence_, {.width = 120, .maximumHeight = height - 0.5})->lines.size(),
              lines == 1 ? 1 : lines - 1);
  }

  EXPECT_TRUE(layOut("", {})->lines.empty());
  EXPECT_TRUE(layOut("a", {.width = 0})->lines.empty());
  EXPECT_TRUE(layOut("a", {.width = std::numeric_limits<double>::quiet_NaN()})->lines.empty());
}

// The mean x of the red pixels, and of the black pixels.
struct Middles {
  double red = 0;
  double black = 0;
};

Middles middlesOf(const ui::TextLayout& layout) {
  Sheet sheet(400, 60, 1);
  sheet.canvas().drawText(layout, {0, 0}, ui::RGBA{0, 0, 0});
  double red = 0, redCount = 0, black = 0, blackCount = 0;
  for (int y = 0; y < 60; ++y) {
    for (int x = 0; x < 400; ++x) {
      const QColor pixel = sheet.pixel(x, y);
      if (pixel.red() > 200 && pixel.green() < 100) red += x, ++redCount;
      if (pixel.red() < 100) black += x, ++blackCount;
    }
  }
  return {red / redCount, black / blackCount};
}

TEST_F(TextEngine, TheFirstLetterSetsTheDirectionOfAParagraph) {
  const ui::RGBA red{1, 0, 0};
  const auto redThenBlack = [&](std::string_view first, std::string_view second, LayoutDirection direction) {
    AttributedText text;
    text.append(first, {.color = red});
    text.append(second);
    return engine_.shape(text, body_)->layOut({.width = 400, .direction = direction});
  };
  const auto hebrew = redThenBlack("שירות ", "תחנות", LayoutDirection::leftToRight);
  EXPECT_GT(middlesOf(*hebrew).red, middlesOf(*hebrew).black);
  EXPECT_EQ(hebrew->lines.at(0).x, 0);
  const auto arabic = redThenBlack("الخط ", "متوقف", LayoutDirection::rightToLeft);
  EXPECT_GT(middlesOf(*arabic).red, middlesOf(*arabic).black);
  EXPECT_DOUBLE_EQ(arabic->lines.at(0).x, 400 - arabic->lines[0].width);
  const auto english = redThenBlack("Line ", "stopped", LayoutDirection::rightToLeft);
  EXPECT_LT(middlesOf(*english).red, middlesOf(*english).black);
  // Digits and brackets without letters have the interface's direction.
  const auto mirrored = redThenBlack("(12) ", "-- [34]", LayoutDirection::rightToLeft);
  EXPECT_GT(middlesOf(*mirrored).red, middlesOf(*mirrored).black);
}

TEST_F(TextEngine, TruncatedRunsKeepTheirFontsAndColors) {
  AttributedText text;
  text.append("Small ", {.font = ui::Font(TextStyle::caption2)});
  text.append("LARGE AND LONG", {.font = ui::Font(TextStyle::largeTitle), .color = ui::RGBA{1, 0, 0}});
  const auto shaped = engine_.shape(text, body_);
  const auto layout = shaped->layOut({.width = 200, .maximumNumberOfLines = 1});
  ASSERT_TRUE(layout->lines.at(0).truncated);
  EXPECT_THAT(layout->lines[0].ascent,
              DoubleNear(engine_.metrics(ui::Font(TextStyle::largeTitle)).ascent, 0.1));
  Sheet sheet(220, 50, 1);
  sheet.canvas().drawText(*layout, {0, 0}, ui::RGBA{0, 0, 0});
  // The ellipsis has the colour of the run before it.
  const int baseline = static_cast<int>(layout->lines[0].baseline);
  bool redDot = false;
  for (int x = static_cast<int>(layout->lines[0].width) - 8; x < layout->lines[0].width; ++x) {
    redDot = redDot || sheet.pixel(x, baseline - 2).green() < 60;
    EXPECT_GT(sheet.pixel(x, baseline - 2).red(), 200);
  }
  EXPECT_TRUE(redDot);
}

TEST_F(TextEngine, ShowsInvalidUtf8AsReplacementCharacters) {
  EXPECT_EQ(widthOf("a\xFF\xC3z"), widthOf("a\uFFFD\uFFFDz"));
  EXPECT_EQ(widthOf("\xED\xA0\x80"), widthOf("\uFFFD\uFFFD\uFFFD"));
  const auto layout = layOut("\xFF\xFF zürich \xFF", {.width = widthOf("zürich") + 1});
  ASSERT_EQ(layout->lines.size(), 3);
  EXPECT_EQ(layout->lines[1].begin, 3);
  EXPECT_EQ(layout->lines[1].end, 10);
  EXPECT_EQ(layout->lines[2].end, 12);
  // Control characters are invisible and have no width.
  EXPECT_EQ(widthOf(std::string("a\0\x1B\x7F"
                                "b",
                                5)),
            widthOf("a\u2060\u2060\u2060"
                    "b"));
}

TEST_F(TextEngine, LinesOfEveryScriptHaveAboutTheSameHeight) {
  const double latin = layOut("Delay", {})->size.height;
  for (const char* text : {"الخط متوقف", "אין שירות", "सेवा में देरी", "列車は運転を見合わせ", "지연",
                           "⚠️🚌👨‍👩‍👧🇨🇭"}) {
    const auto layout = layOut(text, {.scale = 2});
    ASSERT_EQ(layout->lines.size(), 1) << text;
    EXPECT_GT(layout->size.width, 20) << text;
    EXPECT_LT(layout->size.height, 1.3 * latin) << text;
  }
}

TEST_F(TextEngine, LaysOutHostileTextsQuickly) {
  constexpr std::size_t kBytes = 100'000;
  const std::clock_t begin = std::clock();
  for (const std::string_view piece :
       {"word ", "x", " ", "\xCC\x81", "\xFF", "a\xD8\xA7", "\xE2\x80\xAE", "\xE2\x81\xA7", "\xE2\x80\x8D",
        "列", "👨‍👩‍👧", "\n", "\xEF\xBF\xBC", "\xED\xA0\x80", "ﷺ"}) {
    const std::string text = repeated(piece, kBytes);
    const auto shaped = shape(text);
    EXPECT_GE(shaped->naturalWidth(), 0);
    const auto all = shaped->layOut({.width = 254, .scale = 2});
    EXPECT_FALSE(all->lines.empty());
    const auto few = shaped->layOut({.width = 254, .maximumNumberOfLines = 3, .scale = 2});
    EXPECT_LE(few->lines.size(), 3);
    Sheet sheet(260, 80, 1);
    sheet.canvas().drawText(*few, {0, 0}, ui::RGBA{0, 0, 0});
  }
  // Takes about a second of processor time. With quadratic layout it would take minutes.
  EXPECT_LT(std::clock() - begin, 30 * CLOCKS_PER_SEC);
}

}  // namespace
}  // namespace linewatch::desktop
