#include "desktop/drawing/line_shield.h"

#include <limits>

#include <gmock/gmock.h>

#include "desktop/drawing/mode_icon.h"
#include "desktop/drawing/offscreen.h"
#include "platform/recording_log.h"

namespace linewatch::desktop {
namespace {

using ui::Appearance;

class Shields : public testing::Test {
 protected:
  static void SetUpTestSuite() { needOffscreenApplication(); }

  std::shared_ptr<const ui::Image> shield(std::string text, TransitMode mode = TransitMode::bus,
                                          std::string color = "C0103A", ArtworkSize size = {3, 2},
                                          std::optional<double> width = std::nullopt,
                                          std::string textColor = "FFFFFF") {
    return shields_.image({.shieldType = static_cast<std::int64_t>(mode),
                           .shieldText = std::move(text),
                           .shieldColorString = std::move(color),
                           .textColorString = std::move(textColor)},
                          width, size);
  }

  /// The image, drawn in the upper left corner at two pixels per point.
  static QImage drawn(const ui::Image& image, Appearance appearance = Appearance::light) {
    Sheet sheet(image.size().width + 1, image.size().height + 1, 2, appearance);
    image.draw(sheet.canvas(), {0, 0, image.size().width, image.size().height});
    return sheet.image();
  }
  static QColor pixelAt(const ui::Image& image, double x, double y,
                        Appearance appearance = Appearance::light) {
    return drawn(image, appearance).pixelColor(static_cast<int>(2 * x), static_cast<int>(2 * y));
  }

  LineShieldManager shields_;
};

TEST_F(Shields, AreAsWideAsTheirTextButAtLeastSquare) {
  const auto narrow = shield("1");
  EXPECT_EQ(narrow->size().width, narrow->size().height);
  const auto wide = shield("Night 12");
  EXPECT_GT(wide->size().width, 2 * wide->size().height);
  EXPECT_EQ(wide->size().height, narrow->size().height);
  EXPECT_LT(shield(std::string(100'000, 'W'))->size().width, 170);
  for (const double width : {40.0, 12.0, 200.0}) {
    EXPECT_EQ(shield("S1", TransitMode::rail, "1060C0", {3, 2}, width)->size().width, width);
  }
  EXPECT_EQ(shield("  \n "), nullptr);
  EXPECT_EQ(shield(""), nullptr);
  EXPECT_EQ(shield("  7 ")->size().width, shield("7")->size().width);
}

TEST_F(Shields, ShrinkWithEveryStepOnThePixelGrid) {
  double height = std::numeric_limits<double>::infinity();
  double width = height, fixedWidth = height;
  for (std::int64_t step = 3; step >= -4; --step) {
    const auto image = shield("N 12", TransitMode::tram, "108040", {step, 2});
    const auto fixed = shield("N 12", TransitMode::tram, "108040", {step, 2}, 60);
    EXPECT_LT(image->size().height, height);
    EXPECT_LT(image->size().width, width);
    EXPECT_LT(fixed->size().width, fixedWidth);
    EXPECT_EQ(image->size().width * 2, std::round(image->size().width * 2));
    height = image->size().height, width = image->size().width, fixedWidth = fixed->size().width;
  }
  for (const std::int64_t step :
       {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
    EXPECT_GT(shield("1", TransitMode::bus, "108040", {step, 2})->size().height, 0);
  }
}

TEST_F(Shields, TextIsReadableOnEveryColor) {
  const auto brightestOf = [&](const ui::Image& image) {
    int brightest = 0;
    const QImage pixels = drawn(image);
    for (int x = 8; x < pixels.width() - 10; ++x)
      brightest = std::max(brightest, pixels.pixelColor(x, 24).lightness());
    return brightest;
  };
  EXPECT_GT(brightestOf(*shield("H", TransitMode::bus, "102060", {3, 2}, {}, "0F1F5F")), 240);
  EXPECT_LT(brightestOf(*shield("H", TransitMode::bus, "C8C800", {3, 2}, {}, "FFFFFF")), 130);
  // A feed's own colours are kept if the text can be read.
  const QImage kept = drawn(*shield("H", TransitMode::bus, "000000", {3, 2}, {}, "FFCC00"));
  bool hasYellow = false;
  for (int x = 0; x < kept.width(); ++x)
    hasYellow = hasYellow || kept.pixelColor(x, 24) == QColor(255, 204, 0);
  EXPECT_TRUE(hasYellow);
  EXPECT_EQ(pixelAt(*shield("1", TransitMode::bus, "no colour"), 2, 12), QColor(0x5B, 0x64, 0x70));
}

TEST_F(Shields, HaveAnOutlineIfTheColorIsCloseToTheBackground) {
  const auto white = shield("1", TransitMode::rail, "FFFFFF");
  EXPECT_LT(pixelAt(*white, 12, 0.3).lightness(), 230);
  EXPECT_EQ(pixelAt(*white, 12, 1.6), QColor(Qt::white));
  EXPECT_EQ(pixelAt(*white, 12, 0.3, Appearance::dark), QColor(Qt::white));
  const auto black = shield("1", TransitMode::rail, "202020");
  EXPECT_EQ(pixelAt(*black, 12, 0.3), QColor(0x20, 0x20, 0x20));
  EXPECT_NE(pixelAt(*black, 12, 0.3, Appearance::dark), QColor(0x20, 0x20, 0x20));
}

TEST_F(Shields, ModesHaveDifferentShapes) {
  for (std::int64_t step = 3; step >= -4; --step) {
    std::vector<QImage> shapes;
    for (std::int64_t mode = 0; mode <= static_cast<std::int64_t>(TransitMode::air); ++mode) {
      const auto image = shield("I", static_cast<TransitMode>(mode), "000000", {step, 2}, 40, "000000");
      const QImage shape = drawn(*image).copy(0, 0, 12, static_cast<int>(2 * image->size().height));
      for (const QImage& other : shapes) EXPECT_NE(shape, other) << mode << " at " << step;
      shapes.push_back(shape);
    }
  }
  EXPECT_EQ(drawn(*shield("1", static_cast<TransitMode>(99))), drawn(*shield("1", TransitMode::other)));
}

TEST_F(Shields, CenterTheirTextVertically) {
  for (std::int64_t step = 3; step >= -4; --step) {
    const auto image = shield("H", TransitMode::rail, "000000", {step, 2});
    const QImage pixels = drawn(*image);
    int top = pixels.height(), bottom = 0;
    for (int y = 0; y < 2 * image->size().height; ++y) {
      for (int x = 4; x < 2 * image->size().width - 4; ++x) {
        if (pixels.pixelColor(x, y).lightness() > 128) top = std::min(top, y), bottom = std::max(bottom, y);
      }
    }
    EXPECT_NEAR(top, 2 * image->size().height - 1 - bottom, 1) << step;
  }
}

TEST_F(Shields, IconsAreAsHighAsShields) {
  ModeIconManager icons(std::make_shared<DrawingSource>(std::make_shared<RecordingLog>()));
  for (const ArtworkSize size : {ArtworkSize{3, 2}, ArtworkSize{-1, 1}}) {
    const auto icon =
        icons.image({.defaultTransitType = static_cast<std::int64_t>(TransitMode::ferry)}, {}, size);
    ASSERT_NE(icon, nullptr);
    EXPECT_EQ(icon->size().height, artworkHeight(size));
    EXPECT_EQ(icon->size().width, icon->size().height);
  }
  EXPECT_EQ(icons.image({.defaultTransitType = 1}, 30, {3, 1})->size().width, 30);
  for (const std::int64_t mode : {-1L, 0L, 8L}) {
    EXPECT_EQ(icons.image({.defaultTransitType = mode}, {}, {3, 1}), nullptr);
  }
}

TEST_F(Shields, HaveASignForALineWithoutService) {
  const auto isRed = [](const QColor& color) { return color.red() > 180 && color.blue() < 60; };
  LineShieldManager mirrored(ui::LayoutDirection::rightToLeft);
  for (const std::int64_t step : {-4, 3, 12}) {
    const auto plain = shield("7", TransitMode::bus, "0055AA", {step, 2});
    const auto badged = shields_.withIncidentBadge(plain, {step, 2});
    const ui::Size size = badged->size();
    EXPECT_EQ(size.height, plain->size().height);
    EXPECT_GT(size.width, plain->size().width);
    const double nearTop = size.height * 0.13, nearTrailing = size.height * 0.27;
    EXPECT_TRUE(isRed(pixelAt(*badged, size.width - nearTrailing, nearTop))) << step;
    EXPECT_FALSE(isRed(pixelAt(*badged, nearTrailing, nearTop)));
    EXPECT_FALSE(isRed(pixelAt(*badged, size.width - nearTrailing, size.height * 0.8)));
    EXPECT_TRUE(isRed(pixelAt(*mirrored.withIncidentBadge(plain, {step, 2}), nearTrailing, nearTop)));
  }
}

}  // namespace
}  // namespace linewatch::desktop
