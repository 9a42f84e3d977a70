#pragma once

#include <memory>

namespace linewatch {
class IconManager;
class ShieldManager;
}  // namespace linewatch

namespace linewatch::ui {
class ImageSource;
class InterfaceSettings;
class TextEngine;
}  // namespace linewatch::ui

namespace linewatch::desktop {

/// The roles for views only. They are separate because loading Qt's drawing libraries takes longer than most
/// commands run. Main thread.
class DesktopScreen {
 public:
  virtual ~DesktopScreen() = default;

  virtual ui::TextEngine& textEngine() = 0;
  virtual ui::ImageSource& imageSource() = 0;
  virtual ui::InterfaceSettings& interfaceSettings() = 0;
  virtual std::shared_ptr<IconManager> makeIconManager() = 0;
  virtual std::shared_ptr<ShieldManager> makeShieldManager() = 0;
};

}  // namespace linewatch::desktop
