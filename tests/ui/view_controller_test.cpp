#include "ui/view_controller.h"

#include <memory>
#include <vector>

#include <gmock/gmock.h>

#include "ui/ui_fixture.h"
#include "ui/view.h"

namespace linewatch::ui {
namespace {

using testing::SizeIs;

using ViewControllerTest = UiTest;

class Controller final : public ViewController {
 public:
  std::shared_ptr<ExtensionContext> extensionContext() const override { return nullptr; }
  void viewDidLoad() override { view().setFrame({0, 0, 10, 10}); }
};

TEST_F(ViewControllerTest, AControllerLoadsItsViewOnce) {
  Controller controller;
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
