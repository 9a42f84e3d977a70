#include "desktop/drawing/qt_canvas.h"

#include <gmock/gmock.h>

#include "desktop/drawing/offscreen.h"

namespace linewatch::desktop {
namespace {

const ui::RGBA kRed{1, 0, 0};
const QColor kRedPixel(255, 0, 0);

class Canvas : public testing::Test {
 protected:
  static void SetUpTestSuite() { needOffscreenApplication(); }
};

TEST_F(Canvas, ScalesPointsToPixels) {
  Sheet sheet(10, 10, 2);
  sheet.canvas().fillRect({1, 2, 3, 4}, kRed);
  for (const auto& [x, y] : {std::pair(2, 4), {7, 4}, {2, 11}, {7, 11}})
    EXPECT_EQ(sheet.pixel(x, y), kRedPixel);
  for (const auto& [x, y] : {std::pair(1, 4), {8, 4}, {2, 3}, {2, 12}}) EXPECT_TRUE(sheet.isWhite(x, y));
}

TEST_F(Canvas, RestoreResetsClipAlphaAndTranslation) {
  Sheet sheet(20, 20, 1);
  QtCanvas& canvas = sheet.canvas();
  canvas.save();
  canvas.translate({10, 0});
  canvas.clip({0, 0, 5, 20});
  canvas.clip({3, 0, 10, 20});
  canvas.multiplyAlpha(0.5);
  canvas.multiplyAlpha(0.4);
  canvas.fillRect({-10, 0, 20, 5}, kRed);
  canvas.restore();
  canvas.fillRect({0, 10, 20, 5}, kRed);
  EXPECT_TRUE(sheet.isWhite(12, 2));
  EXPECT_TRUE(sheet.isWhite(15, 2));
  EXPECT_NEAR(sheet.pixel(13, 2).green(), 204, 1);
  EXPECT_EQ(sheet.pixel(0, 12), kRedPixel);
  EXPECT_EQ(sheet.pixel(19, 12), kRedPixel);
}

TEST_F(Canvas, ShapesAndSemanticColors) {
  Sheet sheet(20, 20, 1, ui::Appearance::dark);
  sheet.canvas().fillRoundedRect({0, 0, 20, 10}, 99, kRed);
  EXPECT_TRUE(sheet.isWhite(0, 0));
  EXPECT_EQ(sheet.pixel(10, 0), kRedPixel);
  EXPECT_EQ(sheet.pixel(0, 5).green() < 60, true);
  ui::Path triangle;
  triangle.moveTo({0, 10}).lineTo({10, 10}).lineTo({0, 20}).close();
  sheet.canvas().fillPath(triangle, ui::SemanticColor::background);
  EXPECT_LT(sheet.pixel(1, 12).red(), 60);
  EXPECT_TRUE(sheet.isWhite(9, 19));
}

}  // namespace
}  // namespace linewatch::desktop
