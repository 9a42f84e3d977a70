#pragma once

#include <set>
#include <string>

#include "simulation/world/backstage.h"
#include "ui/image.h"
#include "ui/interface_settings.h"

namespace linewatch::simulation {

/// The world's text size, layout direction and display scale.
class SimulatedInterfaceSettings final : public ui::InterfaceSettings {
 public:
  explicit SimulatedInterfaceSettings(SharedBackstage backstage) : backstage_(std::move(backstage)) {}

  ui::TextSizeCategory textSizeCategory() const override { return backstage_->world.textSize; }
  LayoutDirection layoutDirection() const override { return backstage_->world.layoutDirection; }
  double displayScale() const override { return backstage_->world.scale; }

 private:
  SharedBackstage backstage_;
};

/// A picture with a name and no contents.
class SimulatedImage final : public ui::Image {
 public:
  explicit SimulatedImage(std::string name) : name_(std::move(name)) {}

  const std::string& name() const { return name_; }
  Size size() const override { return {20, 20}; }

 private:
  std::string name_;
};

/// Has a picture of 20 by 20 points for every name except the world's `missingImages`. Logs each missing name
/// once.
class SimulatedImageSource final : public ui::ImageSource {
 public:
  explicit SimulatedImageSource(SharedBackstage backstage) : backstage_(std::move(backstage)) {}

  std::shared_ptr<const ui::Image> imageNamed(std::string_view name) override;

 private:
  SharedBackstage backstage_;
  std::set<std::string, std::less<>> missed_;
};

}  // namespace linewatch::simulation
