#include "ui/image_view.h"

#include <gmock/gmock.h>

#include "platform/platform.h"
#include "simulation/roles/recording_canvas.h"
#include "ui/ui_fixture.h"

namespace linewatch::ui {
namespace {

using simulation::RecordingCanvas;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

using ImageViewTest = UiTest;

TEST_F(ImageViewTest, ImagesShrinkInProportionAndMissingOnesAreLeftOut) {
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

}  // namespace
}  // namespace linewatch::ui
