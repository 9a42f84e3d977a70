#include "desktop/drawing/drawing_screen.h"

#include <utility>

#include "desktop/drawing/line_shield.h"
#include "desktop/drawing/mode_icon.h"
#include "desktop/drawing/typefaces.h"
#include "platform/log.h"
#include "platform/platform.h"
#include "ui/image.h"
#include "ui/text_style.h"

namespace linewatch::desktop {

namespace {

// Writes to the log of the platform that is installed at the time, because the platform is made after the
// screen, which it contains.
class InstalledLog final : public Log {
 public:
  void write(const LogMessage& message) override { platform().log().write(message); }
  bool isEnabled(LogLevel level) const override { return platform().log().isEnabled(level); }
};

/// An image in another size.
class GrownImage final : public ui::Image {
 public:
  GrownImage(std::shared_ptr<const ui::Image> image, double growth)
      : image_(std::move(image)), growth_(growth) {}

  ui::Size size() const override { return {image_->size().width * growth_, image_->size().height * growth_}; }
  void draw(ui::Canvas& canvas, const ui::Rect& rect) const override { image_->draw(canvas, rect); }

 private:
  std::shared_ptr<const ui::Image> image_;
  double growth_;
};

}  // namespace

DrawingScreen::DrawingScreen(ScreenSettings settings)
    : settings_(std::move(settings)),
      drawings_(std::make_shared<DrawingSource>(std::make_shared<InstalledLog>())) {
  setFontLanguage(settings_.language);
}

std::shared_ptr<const ui::Image> DrawingScreen::GrowingImages::imageNamed(std::string_view name) {
  auto image = screen_.drawings_->imageNamed(name);
  const double growth = ui::artworkGrowth(screen_.settings_.category);
  return image && growth > 1 ? std::make_shared<GrownImage>(std::move(image), growth) : image;
}

std::shared_ptr<IconManager> DrawingScreen::makeIconManager() {
  return std::make_shared<ModeIconManager>(drawings_);
}

std::shared_ptr<ShieldManager> DrawingScreen::makeShieldManager() {
  return std::make_shared<LineShieldManager>(settings_.direction);
}

}  // namespace linewatch::desktop
