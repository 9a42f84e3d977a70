#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "simulation/scenario/scenario.h"
#include "simulation/simulated_platform.h"

namespace linewatch {
class RVTransitIncidentsViewController;
}

namespace linewatch::simulation {

/// Hosts the widget in a scenario's world and performs the scenario's steps. Its platform is installed while
/// it exists.
///
/// A step is a call in the current turn of the main loop. Actions that the widget dispatches wait for the
/// next `advance`, which may be by 0 seconds.
class ScenarioHost {
 public:
  /// Makes the platform to install from the simulated one, e.g. with other texts. The simulated one outlives
  /// it.
  using Wrap = std::function<std::shared_ptr<Platform>(Platform& simulated)>;

  /// Without `wrap`, the simulated platform itself is installed.
  explicit ScenarioHost(World world, Wrap wrap = {});
  ~ScenarioHost();
  ScenarioHost(const ScenarioHost&) = delete;
  ScenarioHost& operator=(const ScenarioHost&) = delete;

  /// Performs the step. Returns why the step cannot be performed; absent when it was.
  std::optional<std::string> perform(const Step& step);

  const Transcript& transcript() const { return platform_->transcript(); }
  SimulatedPlatform& platform() { return *platform_; }
  /// Null while no widget is loaded.
  const std::shared_ptr<RVTransitIncidentsViewController>& controller() const { return controller_; }

 private:
  struct Performer;

  void install();
  void load();
  void update(const std::string& id);
  void setActiveMode(WidgetDisplayMode mode);
  std::optional<std::string> tap(std::size_t row);
  void resize(const Size& size);
  void limit(const Size& compact, const Size& expanded);
  void change(const std::function<void(World&)>& change);
  void restart();

  Wrap wrap_;
  std::shared_ptr<SimulatedPlatform> platform_;
  std::shared_ptr<RVTransitIncidentsViewController> controller_;
};

}  // namespace linewatch::simulation
