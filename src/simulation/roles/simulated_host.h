#pragma once

#include <memory>
#include <string>

#include "platform/extension_context.h"
#include "simulation/world/backstage.h"
#include "ui/view_controller.h"

namespace linewatch::simulation {

/// The display mode's name in scenarios and transcripts.
std::string_view nameOf(WidgetDisplayMode mode);

/// The host that the world describes. Records "largestAvailableDisplayMode" and "openURL". The completion of
/// an opening gets the world's `opens` after the call has returned.
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

/// A controller that has an extension context and nothing else, for code that only needs the context.
class SimulatedViewController final : public ui::ViewController {
 public:
  explicit SimulatedViewController(std::shared_ptr<ExtensionContext> context)
      : context_(std::move(context)) {}

  std::shared_ptr<ExtensionContext> extensionContext() const override { return context_; }

 private:
  std::shared_ptr<ExtensionContext> context_;
};

}  // namespace linewatch::simulation
