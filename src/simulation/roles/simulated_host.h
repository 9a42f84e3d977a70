#pragma once

#include <memory>
#include <string>

#include "platform/extension_context.h"
#include "simulation/world/backstage.h"
#include "ui/view_controller.h"

namespace linewatch::simulation {

/// The name of a display mode in scenarios and transcripts.
std::string_view nameOf(WidgetDisplayMode mode);

/// The host that the world describes. Records "largestAvailableDisplayMode" and "openURL"; the outcome of an
/// opening is reported later than the call.
class SimulatedExtensionContext final : public ExtensionContext {
 public:
  explicit SimulatedExtensionContext(SharedBackstage backstage) : backstage_(std::move(backstage)) {}

  Size maximumSizeForDisplayMode(WidgetDisplayMode mode) const override;
  WidgetDisplayMode activeDisplayMode() const override { return backstage_->world.host.activeMode; }
  void setLargestAvailableDisplayMode(WidgetDisplayMode mode) override;
  void openURL(const URL& url, std::function<void(bool success)> completion) override;

 private:
  SharedBackstage backstage_;
};

/// A controller with nothing but a way to the host, for what needs a controller's context alone.
class SimulatedViewController final : public ui::ViewController {
 public:
  explicit SimulatedViewController(std::shared_ptr<ExtensionContext> context)
      : context_(std::move(context)) {}

  std::shared_ptr<ExtensionContext> extensionContext() const override { return context_; }

 private:
  std::shared_ptr<ExtensionContext> context_;
};

}  // namespace linewatch::simulation
