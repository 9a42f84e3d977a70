#include "desktop/drawing/drawing_source.h"

#include <gmock/gmock.h>

#include "desktop/drawing/offscreen.h"
#include "platform/recording_log.h"

namespace linewatch::desktop {
namespace {

using testing::ElementsAre;

class Drawings : public testing::Test {
 protected:
  static void SetUpTestSuite() { needOffscreenApplication(); }

  QColor drawnAt(std::string_view name, ui::Point point, ui::Appearance appearance, double scale = 1) {
    const auto image = drawings_.imageNamed(name);
    Sheet sheet(40, 40, scale, appearance);
    image->draw(sheet.canvas(), {0, 0, image->size().width, image->size().height});
    return sheet.pixel(static_cast<int>(point.x * scale), static_cast<int>(point.y * scale));
  }

  std::shared_ptr<RecordingLog> log_ = std::make_shared<RecordingLog>();
  DrawingSource drawings_{log_};
};

TEST_F(Drawings, HasEveryDrawingThatRowsUse) {
  for (const std::string_view name :
       {"good-v2", "good-alt-v2", "advisories-v2", "WidgetGenericTransit", "mode-bus", "mode-tram",
        "mode-metro", "mode-rail", "mode-ferry", "mode-cable", "mode-air"}) {
    const auto image = drawings_.imageNamed(name);
    ASSERT_NE(image, nullptr) << name;
    EXPECT_EQ(image->size().width, image->size().height);
    Sheet sheet(32, 32, 1);
    image->draw(sheet.canvas(), {0, 0, 32, 32});
    bool hasInk = false;
    for (int y = 0; y < 32; ++y) hasInk = hasInk || sheet.hasInk(y);
    EXPECT_TRUE(hasInk) << name;
  }
  EXPECT_THAT(log_->lines(), ElementsAre());
}

TEST_F(Drawings, HaveTheColorsOfTheAppearance) {
  EXPECT_LT(drawnAt("good-alt-v2", {16, 4}, ui::Appearance::light).red(), 60);
  EXPECT_GT(drawnAt("good-alt-v2", {16, 4}, ui::Appearance::dark).red(), 200);
  const QColor light = drawnAt("good-v2", {16, 4}, ui::Appearance::light, 3);
  const QColor dark = drawnAt("good-v2", {16, 4}, ui::Appearance::dark, 3);
  EXPECT_GT(light.green(), 2 * light.red());
  EXPECT_GT(dark.green(), light.green() + 30);
}

TEST_F(Drawings, LogsAMissingDrawingOnce) {
  for (const std::string_view name : {"none", "none", "", "../drawings/good-v2\n", "none"}) {
    EXPECT_EQ(drawings_.imageNamed(name), nullptr);
  }
  EXPECT_EQ(log_->lines().size(), 3);
  EXPECT_EQ(log_->lines().at(0), "There is no image named none");
}

}  // namespace
}  // namespace linewatch::desktop
