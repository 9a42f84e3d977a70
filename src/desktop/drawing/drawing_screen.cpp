#include "desktop/drawing/drawing_screen.h"

#include "desktop/drawing/line_shield.h"
#include "desktop/drawing/mode_icon.h"
#include "platform/log.h"
#include "platform/platform.h"

namespace linewatch::desktop {

namespace {

// Writes to the log of the platform that is installed at the time, because the platform is made after the
// screen, which it contains.
class InstalledLog final : public Log {
 public:
  void write(const LogMessage& message) override { platform().log().write(message); }
  bool isEnabled(LogLevel level) const override { return platform().log().isEnabled(level); }
};

}  // namespace

DrawingScreen::DrawingScreen(ScreenSettings settings)
    : settings_(std::move(settings)),
      drawings_(std::make_shared<DrawingSource>(std::make_shared<InstalledLog>())) {}

std::shared_ptr<IconManager> DrawingScreen::makeIconManager() {
  return std::make_shared<ModeIconManager>(drawings_);
}

std::shared_ptr<ShieldManager> DrawingScreen::makeShieldManager() {
  return std::make_shared<LineShieldManager>(settings_.direction);
}

}  // namespace linewatch::desktop
