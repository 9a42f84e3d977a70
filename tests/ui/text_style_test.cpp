#include "ui/text_style.h"

#include <algorithm>
#include <memory>
#include <optional>

#include <gmock/gmock.h>

#include "ui/font.h"
#include "ui/notification_center.h"
#include "ui/ui_fixture.h"

namespace linewatch::ui {
namespace {

using TextStyleTest = UiTest;

TEST_F(TextStyleTest, ALargerTextSizeIsAnnouncedAndScalesFonts) {
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

}  // namespace
}  // namespace linewatch::ui
