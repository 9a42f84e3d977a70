#pragma once

#include <memory>
#include <optional>
#include <string>

#include "simulation/scenario/scenario.h"
#include "simulation/simulated_platform.h"

namespace linewatch {
class RVTransitIncidentsViewController;
}

namespace linewatch::simulation {

/// Hosts the widget in a scenario's world and does what its steps say. While it lives, its platform is the
/// installed one.
///
/// A step is a call of the host or the user in the present turn of the main loop. What the widget puts off
/// until a later turn waits for an `advance`, be it of no time at all.
class ScenarioHost {
 public:
  explicit ScenarioHost(World world);
  ~ScenarioHost();
  ScenarioHost(const ScenarioHost&) = delete;
  ScenarioHost& operator=(const ScenarioHost&) = delete;

  /// None when the step is done, otherwise why it cannot be.
  std::optional<std::string> perform(const Step& step);

  const Transcript& transcript() const { return platform_->transcript(); }
  SimulatedPlatform& platform() { return *platform_; }
  /// Null when no widget is loaded.
  const std::shared_ptr<RVTransitIncidentsViewController>& controller() const { return controller_; }

 private:
  struct Performer;

  void load();
  void update(const std::string& id);
  void setActiveMode(WidgetDisplayMode mode);
  std::optional<std::string> tap(std::size_t row);
  void resize(const Size& size);
  void change(const std::function<void(World&)>& change);
  void restart();

  std::shared_ptr<SimulatedPlatform> platform_;
  std::shared_ptr<RVTransitIncidentsViewController> controller_;
};

}  // namespace linewatch::simulation
