#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "desktop/desktop_screen.h"
#include "desktop/drawing/drawing_source.h"
#include "desktop/drawing/qt_text_engine.h"
#include "ui/color.h"
#include "ui/interface_settings.h"
#include "ui/layout/geometry.h"
#include "ui/text_style.h"

namespace linewatch::desktop {

/// The settings of the user and the display. The owner may change them.
class ScreenSettings final : public ui::InterfaceSettings {
 public:
  ui::TextSizeCategory textSizeCategory() const override { return category; }
  ui::LayoutDirection layoutDirection() const override { return direction; }
  double displayScale() const override { return scale; }

  ui::TextSizeCategory category = ui::kDefaultTextSizeCategory;
  ui::LayoutDirection direction = ui::LayoutDirection::leftToRight;
  /// Pixels per point.
  double scale = 1;
  /// The language of the texts, e.g. "ja"; see `setFontLanguage`.
  std::string language = {};
};

/// Draws views with Qt. Needs a QGuiApplication.
class DrawingScreen final : public DesktopScreen {
 public:
  explicit DrawingScreen(ScreenSettings settings);

  /// Whoever changes the text size also posts kTextSizeDidChangeNotification.
  ScreenSettings& settings() { return settings_; }

  ui::TextEngine& textEngine() override { return textEngine_; }
  ui::ImageSource& imageSource() override { return images_; }
  ui::InterfaceSettings& interfaceSettings() override { return settings_; }
  std::shared_ptr<IconManager> makeIconManager() override;
  std::shared_ptr<ShieldManager> makeShieldManager() override;

 private:
  /// The drawings, which grow with the user's text.
  class GrowingImages final : public ui::ImageSource {
   public:
    explicit GrowingImages(DrawingScreen& screen) : screen_(screen) {}

    std::shared_ptr<const ui::Image> imageNamed(std::string_view name) override;

   private:
    DrawingScreen& screen_;
  };

  ScreenSettings settings_;
  QtTextEngine textEngine_;
  std::shared_ptr<DrawingSource> drawings_;
  GrowingImages images_{*this};
};

}  // namespace linewatch::desktop
